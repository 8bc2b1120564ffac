// SPDX-License-Identifier: MIT
#include "value.h"

#include "failure.h"

#include <algorithm>
#include <cstring>

namespace treevault::program {

namespace {

struct NamedType {
    const char* Name;
    ValueType Type;
    bool HasArray;
};

constexpr NamedType NamedTypes[] = {
    {"Empty", VtEmpty, false},  {"StringA", VtStringA, true}, {"StringW", VtStringW, true},
    {"Int32", VtInt32, true},   {"UInt32", VtUInt32, true},   {"Int64", VtInt64, true},
    {"UInt64", VtUInt64, true}, {"Bool", VtBool, true},       {"Binary", VtBinary, false},
    {"Guid", VtGuid, true},
};

std::string LowerCase(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return text;
}

std::string KnownNames() {
    std::string names;
    for (const NamedType& type : NamedTypes)
        names += (names.empty() ? "" : ", ") + std::string(type.Name);
    return names;
}

bool CutSuffix(std::string& text, const std::string& suffix) {
    if (!text.ends_with(suffix))
        return false;
    text.resize(text.size() - suffix.size());
    return true;
}

} // namespace

Value Converted(const Value& value, ValueType type) {
    uint64_t size = 0;
    HRESULT result =
        AcnConvertData(value.Type, value.Bytes.data(), value.Bytes.size(), type, nullptr, &size);
    Value converted{type, {}};
    if (result == TREEVAULT_E_INSUFFICIENT_BUFFER) {
        converted.Bytes.resize(size);
        result = AcnConvertData(value.Type, value.Bytes.data(), value.Bytes.size(), type,
                                converted.Bytes.data(), &size);
    }
    Check(result, "cannot convert " + TypeName(value.Type) + " to " + TypeName(type));
    return converted;
}

std::string TypeName(ValueType type) {
    for (const NamedType& named : NamedTypes)
        if (named.Type == (type & ~VtArray))
            return std::string(named.Name) + (IsArray(type) ? "[]" : "");
    return "type " + std::to_string(type);
}

ValueType ParseTypeName(const std::string& name) {
    std::string base = LowerCase(name);
    const bool array = CutSuffix(base, "[]") || CutSuffix(base, "array");
    if (base.starts_with("vt"))
        base.erase(0, 2);
    for (const NamedType& named : NamedTypes)
        if (base == LowerCase(named.Name) && (named.HasArray || !array))
            return static_cast<ValueType>(named.Type | (array ? VtArray : 0));
    throw UsageFailure("unknown type '" + name + "'; the types are " + KnownNames() +
                       ", and with [] behind it an array of each but Empty and Binary");
}

Value ReadAttribute(IACNode* node, const WideText& name, ValueType wanted) {
    Value value{wanted, {}};
    size_t size = 0;
    HRESULT result = AcnGetAttribute(node, name.c_str(), &wanted, nullptr, &size, nullptr);
    if (SUCCEEDED(result) || result == TREEVAULT_E_INSUFFICIENT_BUFFER) {
        value.Bytes.resize(size);
        result = AcnGetAttribute(node, name.c_str(), &wanted, value.Bytes.data(), &size, nullptr);
    }
    Check(result, "cannot read attribute '" + ToUtf8(name) + "'");
    return value;
}

ValueType ReadAttributeType(IACNode* node, const WideText& name) {
    ValueType type = VtEmpty;
    Check(AcnGetAttribute(node, name.c_str(), nullptr, nullptr, nullptr, &type),
          "cannot read attribute '" + ToUtf8(name) + "'");
    return type;
}

std::vector<WideText> Texts(const Value& value) {
    WideText all(value.Bytes.size() / sizeof(WCHAR), WCHAR());
    std::memcpy(all.data(), value.Bytes.data(), all.size() * sizeof(WCHAR));
    if (IsArray(value.Type))
        return SplitTexts(all);
    all.pop_back();
    return {all};
}

std::vector<WideText> SplitTexts(const WideText& all) {
    std::vector<WideText> texts;
    for (auto start = all.begin(); start != all.end();) {
        const auto end = std::find(start, all.end(), WCHAR());
        texts.emplace_back(start, end);
        start = end == all.end() ? end : end + 1;
    }
    return texts;
}

} // namespace treevault::program
