// SPDX-License-Identifier: MIT
// A node as text: the XML of a document that holds the node alone, less its outer element.
#include "general/treevault/presentation/nodelogview.h"

#include "common/errorhandling.h"
#include "general/treevault/presentation/masking.h"
#include "general/treevault/xml/xmlnodeserializer.h"
#include "platform/encoding.h"

#include <string_view>

namespace treevault {

namespace {

HRESULT TREEVAULT_CALL AppendBytes(const char* text, uint64_t size, void* context) {
    static_cast<std::string*>(context)->append(text, static_cast<size_t>(size));
    return S_OK;
}

std::string NodeToXmlText(IACNode* node, uint64_t depth, size_t most) {
    std::string bytes;
    const auto serializer = MakeComponent<CXMLNodeSerializer>(
        &AppendBytes, &bytes,
        static_cast<uint32_t>(NodeSerializerFlagFullPath | NodeSerializerFlagIndent));
    serializer->LimitText(most);
    HRES{serializer->SerializeNodes(&node, 1, depth)};
    HRES{serializer->Finalize()};
    if (!bytes.empty() && bytes.back() == 0)
        bytes.pop_back();
    return bytes;
}

std::string_view TrimEnd(std::string_view text, std::string_view units) noexcept {
    return text.substr(0, text.find_last_not_of(units) + 1);
}

// Takes the outer element off, where there is one.
std::string_view InnerText(std::string_view document) noexcept {
    constexpr std::string_view open = "<nr>";
    constexpr std::string_view close = "</nr>";
    std::string_view text = TrimEnd(document, " \r\n\t");
    if (text.starts_with(open)) {
        const size_t begin = text.find_first_not_of("\r\n", open.size());
        text.remove_prefix(begin == std::string_view::npos ? text.size() : begin);
    }
    if (text.ends_with(close)) {
        text.remove_suffix(close.size());
        text = TrimEnd(text, "\r\n");
    }
    return text;
}

} // namespace

NodeLogView::NodeLogView(IACNode* node, bool deep)
    : Depth(deep ? static_cast<uint32_t>(TREEVAULT_ALL_LEVELS) : 0) {
    if (node)
        Node = MaskHiddenAttributes(node, Depth, *GetHiddenAttrsConfig());
}

WideText NodeLogView::ToText(size_t most) const {
    if (!Node)
        return TV_W("ACNode[<null>]");
    const std::string document = NodeToXmlText(Node.Get(), Depth, most);
    WideStream text;
    text << TV_W("ACNode[");
    text.Address(Node.Get()) << TV_W("]:\r\n");
    AppendWide(InnerText(document), text.Str());
    return std::move(text.Str());
}

// A text beyond this helps nobody, and that of a deep tree, whose lines are indented, may be larger
// than any memory.
constexpr size_t LongestLine = size_t{16} << 20;

void LogNode(uint32_t severity, const WCHAR* label, IACNode* node, SourcePlace place) {
    LogTraced(
        severity,
        [&](WideStream& line) {
            const KeptErrorRecord record;
            line << label;
            line << NodeLogView(node, true).ToText(LongestLine);
        },
        place);
}

void LogPointer(const WCHAR* label, const void* pointer, SourcePlace place) {
    LogTraced(
        SeverityDbg2, [&](WideStream& line) { (line << label).Address(pointer); }, place);
}

} // namespace treevault
