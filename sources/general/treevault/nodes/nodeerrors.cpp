// SPDX-License-Identifier: MIT
// The context text of node failures.
#include "general/treevault/nodes/nodeerrors.h"

#include "common/errorhandling.h"

#include <new>

namespace treevault {

namespace {

void AppendPart(WideText& context, const WCHAR* key, WideView value) {
    if (!context.empty())
        context += TV_W("; ");
    if (key)
        context.append(key).append(TV_W("='")).append(value).append(TV_W("'"));
    else
        context.append(value);
}

// Empty when the node does not tell it.
WideText ReadFullPath(IACNode* node) {
    size_t size = 0;
    if (FAILED(node->GetName(NameFullPath, nullptr, &size)) || size == 0)
        return {};
    WideText path(size, WCHAR());
    if (FAILED(node->GetName(NameFullPath, path.data(), &size)))
        return {};
    path.resize(WideLength(path.c_str()));
    return path;
}

} // namespace

HRESULT ReportNodeError(HRESULT hr, IACNode* node, const WCHAR* key, const WCHAR* value) noexcept {
    try {
        WideText context;
        if (value)
            AppendPart(context, key, value);
        if (node) {
            const WideText path = ReadFullPath(node);
            if (!path.empty())
                AppendPart(context, TV_W("NodePath"), path);
        }
        if (context.empty())
            return ReportError(hr);
        return ReportError(hr, TV_W(" (") + context + TV_W(")"));
    } catch (const std::bad_alloc&) {
        return hr;
    }
}

} // namespace treevault
