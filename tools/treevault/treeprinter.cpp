// SPDX-License-Identifier: MIT
#include "treeprinter.h"

#include "showntext.h"
#include "treewalk.h"
#include "value.h"

#include <algorithm>

namespace treevault::program {

namespace {

// Lines further in than this stand no further in, and tell their level instead.
constexpr uint64_t IndentLimit = 40;
constexpr size_t IndentWidth = 2;

constexpr size_t ShownUnits = 120;
constexpr size_t ShownElements = 16;

bool IsText(ValueType type) {
    const int kind = type & ~VtArray;
    return kind == VtStringA || kind == VtStringW;
}

// Where a top-level node has a path, the whole of it is its name.
std::string ShownName(IACNode* node, uint64_t level) {
    if (level == 0) {
        const WideText path = NodeName(node, NameFullPath);
        if (std::ranges::count(path, WCHAR('\\')) > 1)
            return Plain(path);
    }
    return Plain(NodeName(node, NameShort));
}

} // namespace

void TreePrinter::Print(NodeHandle root) {
    WalkTree(std::move(root), Options.Depth,
             [this](IACNode* node, uint64_t level, uint64_t childCount) {
                 PrintNode(node, level, childCount);
             });
}

void TreePrinter::PrintNode(IACNode* node, uint64_t level, uint64_t childCount) {
    Indent(level);
    Out.Write(Colour::Name, ShownName(node, level));
    if (const WideText type = NodeType(node); !type.empty()) {
        Out.Write(" : ");
        Out.Write(Colour::Type, Plain(type));
    }
    if (childCount != 0 && Options.Depth != TREEVAULT_ALL_LEVELS && level >= Options.Depth)
        Out.Write(Colour::Remark, "  (" + std::to_string(childCount) +
                                      (childCount == 1 ? " child)" : " children)"));
    Out.Write("\n");
    for (const WideText& name : AttributeNames(node)) {
        Indent(level + 1);
        PrintAttribute(node, name);
    }
}

void TreePrinter::PrintAttribute(IACNode* node, const WideText& name) {
    const ValueType type = ReadAttributeType(node, name);
    const ValueType wanted = IsArray(type) ? VtStringWArray : VtStringW;
    const std::vector<WideText> texts = Texts(ReadAttribute(node, name, wanted));
    std::string typeName = TypeName(type);
    if (IsArray(type))
        typeName.insert(typeName.size() - 1, std::to_string(texts.size()));
    Out.Write("@");
    Out.Write(Colour::Attribute, Plain(name));
    Out.Write(" ");
    Out.Write(Colour::Type, typeName);
    if (type != VtEmpty && !texts.empty()) {
        Out.Write(" = ");
        PrintValue(type, texts);
    }
    Out.Write("\n");
}

void TreePrinter::PrintValue(ValueType type, const std::vector<WideText>& texts) {
    const size_t units = Options.IsWhole ? NoLimit : ShownUnits;
    const size_t count = Options.IsWhole ? texts.size() : std::min(texts.size(), ShownElements);
    for (size_t i = 0; i < count; ++i) {
        if (i != 0)
            Out.Write(", ");
        Out.Write(Colour::Value, IsText(type) ? Quoted(texts[i], units) : Escaped(texts[i], units));
    }
    if (count != texts.size())
        Out.Write(", ...");
}

void TreePrinter::Indent(uint64_t level) {
    Out.Write(std::string(std::min(level, IndentLimit) * IndentWidth, ' '));
    if (level > IndentLimit)
        Out.Write(Colour::Remark, std::string("[").append(std::to_string(level)).append("] "));
}

} // namespace treevault::program
