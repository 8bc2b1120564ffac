// SPDX-License-Identifier: MIT
// From elements to nodes.
#include "general/treevault/xml/xmlnodereader.h"

#include "common/errorhandling.h"
#include "common/numbers.h"
#include "general/treevault/values/conversion.h"
#include "platform/encoding.h"

#include <limits>

namespace treevault {

namespace {

using Element = rapidxml::xml_node<char>;
using Attribute = rapidxml::xml_attribute<char>;

// The lines of a context carry one name for their source, wherever the code stands.
constexpr SourcePlace Here(uint32_t line = __builtin_LINE()) noexcept {
    return {"sources/general/treevault/xmlnodedeserializer", line};
}

template <class Item>
bool IsNamed(const Item& item, char name) noexcept {
    return item.name_size() == 1 && *item.name() == name;
}

std::string_view ValueOf(const Attribute& attribute) noexcept {
    return {attribute.value(), attribute.value_size()};
}

// The attributes that mean something; the first one of each name counts.
struct KnownAttributes {
    explicit KnownAttributes(const Element& element) noexcept {
        for (const Attribute* at = element.first_attribute(); at; at = at->next_attribute()) {
            const Attribute** place = IsNamed(*at, 'n')   ? &Name
                                      : IsNamed(*at, 't') ? &Type
                                      : IsNamed(*at, 'v') ? &Value
                                                          : nullptr;
            if (place && !*place)
                *place = at;
        }
    }

    const Attribute* Name = nullptr;
    const Attribute* Type = nullptr;
    const Attribute* Value = nullptr;
};

// Wide text in `buffer`; null for an absent attribute.
const WCHAR* ToWide(const Attribute* attribute, WideText& buffer) {
    if (!attribute)
        return nullptr;
    buffer.clear();
    AppendWide(ValueOf(*attribute), buffer);
    return buffer.c_str();
}

// The number must reach to the end of the text, beyond a NUL inside.
ValueType ParseRecordedType(const Attribute& attribute) {
    const std::string_view text = ValueOf(attribute);
    const char* stop = nullptr;
    const uint32_t number = ParseInteger<uint32_t>(text.data(), &stop);
    if (stop != text.data() + text.size() || number > std::numeric_limits<ValueType>::max())
        ThrowHr(E_INVALIDARG);
    return static_cast<ValueType>(number);
}

// The value as a log line shows it.
WideText TextForLog(const ValueView& value) {
    if (value.Type != VtStringA || !value.Data)
        return TV_W("<n/a>");
    return treevault::ToWide(static_cast<const char*>(value.Data));
}

void LogFailedRestore(const ValueView& value, ValueType recordedType, const HRX& failure) {
    Log(
        SeverityWarn,
        [&](WideStream& line) {
            line << TV_W("Cannot restore the original value type ") << recordedType
                 << TV_W(" for value: '") << TextForLog(value) << TV_W("' stored as type ")
                 << value.Type << TV_W(": ");
            AppendErrorText(line, failure);
        },
        Here());
}

const Element* NextNamed(const Element* element, char name) noexcept {
    while (element && !IsNamed(*element, name))
        element = element->next_sibling();
    return element;
}

// A child that its parent refused is read to its end first, since what is wrong inside of it comes
// before the refusal.
class Refusal {
public:
    // A later one comes from further inside.
    void Keep(HRESULT code, size_t level) noexcept {
        Failure = HRX(code);
        Level = level;
    }

    void RaiseAt(size_t level) {
        if (Level != level)
            return;
        SetErrorInfo(0, Failure.Info.Get());
        ThrowHr(Failure.Code);
    }

private:
    HRES Failure{S_OK};
    size_t Level = std::numeric_limits<size_t>::max();
};

} // namespace

XmlNodeReader::XmlNodeReader(NodeTextReadCallback read, void* readContext, uint32_t flags)
    : Flags(flags) {
    ReadText(read, readContext);
    Parse();
    const Element* const root = Document.first_node();
    if (!root || std::string_view(root->name(), root->name_size()) != "nr")
        ThrowHr(ReportError(TREEVAULT_E_NOT_A_NODE_DOCUMENT));
    Current = root->first_node();
}

void XmlNodeReader::ReadText(NodeTextReadCallback read, void* readContext) {
    const char* piece = nullptr;
    uint64_t size = 0;
    uint32_t end = 0;
    while (end == 0) {
        HRES hr = read(&piece, &size, &end, readContext);
        if (size == 0)
            continue;
        CheckOutPointer(piece);
        if (size > Text.max_size() - Text.size())
            ThrowOutOfMemory();
        Text.append(piece, static_cast<size_t>(size));
    }
}

void XmlNodeReader::Parse() {
    try {
        Document.Parse(Text.data() + (Text.starts_with("\xEF\xBB\xBF") ? 3 : 0));
    } catch (const rapidxml::parse_error& error) {
        WideText context(TV_W(" ("));
        AppendWide(error.what(), context);
        context += TV_W(')');
        ThrowHr(ReportError(TREEVAULT_E_NOT_WELL_FORMED, context));
    }
}

Ref<CACNodeImpl> XmlNodeReader::ReadNextNode() {
    if (!Current)
        return {};
    if (!IsNamed(*Current, 'n'))
        ThrowHr(TREEVAULT_E_NOT_A_NODE_DOCUMENT);
    Ref<CACNodeImpl> node = ReadNode(*Current);
    Current = Current->next_sibling();
    return node;
}

// A child is added to its parent while it is still empty, which costs the same at any depth.
Ref<CACNodeImpl> XmlNodeReader::ReadNode(const Element& element) {
    struct OpenNode {
        Ref<CACNodeImpl> Node;
        const Element* NextChild;
    };
    Ref<CACNodeImpl> root = CreateNode(element);
    std::vector<OpenNode> open;
    open.push_back({root, element.first_node()});
    Refusal refusal;
    for (;;) {
        OpenNode& top = open.back();
        const Element* const child = top.NextChild;
        if (!child) {
            refusal.RaiseAt(open.size());
            open.pop_back();
            if (open.empty())
                return root;
            continue;
        }
        top.NextChild = child->next_sibling();
        if (IsNamed(*child, 'a')) {
            ReadAttribute(*child, *top.Node);
            continue;
        }
        if (!IsNamed(*child, 'n'))
            ThrowHr(TREEVAULT_E_NOT_A_NODE_DOCUMENT);
        Ref<CACNodeImpl> node = CreateNode(*child);
        const HRESULT hr = top.Node->AddChild(node.Get());
        if (FAILED(hr))
            refusal.Keep(hr, open.size() + 1);
        open.push_back({std::move(node), child->first_node()});
    }
}

Ref<CACNodeImpl> XmlNodeReader::CreateNode(const Element& element) {
    const KnownAttributes known(element);
    const WCHAR* const name = ToWide(known.Name, Name);
    return MakeComponent<CACNodeImpl>(name, ToWide(known.Type, Type));
}

void XmlNodeReader::ReadAttribute(const Element& element, CACNodeImpl& node) {
    KnownAttributes known(element);
    if (!known.Name)
        ThrowHr(TREEVAULT_E_NOT_A_NODE_DOCUMENT);
    if (Flags & NodeSerializerFlagNoValueTypes)
        known.Type = nullptr;
    // The parser put a terminator behind each value.
    ValueView value =
        known.Value ? ValueView{VtStringA, known.Value->value(), known.Value->value_size() + 1}
                    : ReadArray(element);
    if (known.Type)
        RestoreValueType(value, ParseRecordedType(*known.Type));
    HRES hr = node.SetAttribute(ToWide(known.Name, Name), value.Type, value.Data,
                                static_cast<size_t>(value.Size));
}

// The strings of the children `v`; empty when there are none.
ValueView XmlNodeReader::ReadArray(const Element& element) {
    const Element* child = NextNamed(element.first_node(), 'v');
    if (!child)
        return {VtEmpty, nullptr, 0};
    ArrayBuffer.clear();
    for (; child; child = NextNamed(child->next_sibling(), 'v')) {
        const Attribute* const value = KnownAttributes(*child).Value;
        if (!value)
            ThrowHr(TREEVAULT_E_NOT_A_NODE_DOCUMENT);
        ArrayBuffer.insert(ArrayBuffer.end(), value->value(),
                           value->value() + value->value_size() + 1);
    }
    return {VtStringAArray, ArrayBuffer.data(), ArrayBuffer.size()};
}

void XmlNodeReader::RestoreValueType(ValueView& value, ValueType recordedType) {
    if (value.Type == recordedType)
        return;
    try {
        ConvertValueInPlace(value, recordedType, ValueBuffer);
    } catch (const HRX& failure) {
        LogFailedRestore(value, recordedType, failure);
        if (Flags & NodeDeserializerFlagStrict)
            throw;
        Log(
            SeverityWarn, [](WideStream& line) { line << TV_W("The value type left unchanged"); },
            Here());
    }
}

} // namespace treevault
