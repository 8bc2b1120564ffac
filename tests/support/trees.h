// SPDX-License-Identifier: MIT
// Trees as text, for tests that compare many of them. "a:T{x=1 ~y='two'}(b c(d))" is a node "a" of
// type "T" with the attribute "x", a VtInt32, and the unmodified attribute "y", a VtStringW, and
// with the children "b" and "c", the second of which has a child "d". Trees of a forest are set
// apart by blanks. "/" stands for "\", so that "/p/a" is a node of that path.
#ifndef TREEVAULT_TESTS_SUPPORT_TREES_H
#define TREEVAULT_TESTS_SUPPORT_TREES_H

#include "support/nodes.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace treevault::tests {

using Nodes = std::vector<Node>;

inline Text Wide(std::string_view text) {
    Text wide(text.begin(), text.end());
    std::replace(wide.begin(), wide.end(), W('/'), W('\\'));
    return wide;
}

inline std::string Plain(const Text& text) {
    std::string plain = Narrow(text);
    std::replace(plain.begin(), plain.end(), '\\', '/');
    return plain;
}

// --- Text to trees -------------------------------------------------------------------------------

class TreeParser {
public:
    explicit TreeParser(std::string_view text) : Rest(text) {}

    Nodes Forest() {
        Nodes nodes;
        while (!Rest.empty() && Rest.front() != ')') {
            nodes.push_back(Tree());
            Skip(' ');
        }
        return nodes;
    }

    bool IsAtEnd() const { return Rest.empty(); }

private:
    bool Skip(char wanted) {
        if (Rest.empty() || Rest.front() != wanted)
            return false;
        Rest.remove_prefix(1);
        return true;
    }

    std::string_view Take(std::string_view ends) {
        const std::string_view taken = Rest.substr(0, Rest.find_first_of(ends));
        Rest.remove_prefix(taken.size());
        return taken;
    }

    Node Tree() {
        const Text name = Wide(Take(" :{}()"));
        const Text type = Skip(':') ? Wide(Take(" {}()")) : Text();
        const Node node = Create(name.c_str(), type.c_str());
        if (Skip('{'))
            while (!Skip('}') && !IsAtEnd())
                Attribute(node);
        if (Skip('(')) {
            for (const Node& child : Forest())
                EXPECT_EQ(S_OK, AcnAddChild(node, child));
            EXPECT_TRUE(Skip(')')) << Rest;
        }
        return node;
    }

    void Attribute(IACNode* node) {
        const bool isModified = !Skip('~');
        const Text name = Wide(Take("="));
        Skip('=');
        const Value value = Skip('\'') ? TextValue(Wide(Take("'"))) : Number(Take(" }"));
        Skip('\'');
        Skip(' ');
        EXPECT_EQ(S_OK, Set(node, name.c_str(), value));
        if (!isModified) {
            EXPECT_EQ(S_OK, AcnSetModifiedState(node, name.c_str(), 0));
        }
    }

    static Value Number(std::string_view digits) {
        return Int32Value(static_cast<int32_t>(std::stoi(std::string(digits))));
    }

    std::string_view Rest;
};

inline Nodes Trees(std::string_view text) {
    TreeParser parser(text);
    Nodes nodes = parser.Forest();
    EXPECT_TRUE(parser.IsAtEnd()) << text;
    return nodes;
}

inline Node Tree(std::string_view text) {
    const Nodes nodes = Trees(text);
    EXPECT_EQ(1u, nodes.size()) << text;
    return nodes.front();
}

// --- Trees to text -------------------------------------------------------------------------------

enum class Flags { Hidden, Shown };

inline std::string ShowValue(const Value& value) {
    if (value.Tag == VtInt32) {
        int32_t number = 0;
        std::memcpy(&number, value.Bytes.data(), sizeof number);
        return std::to_string(number);
    }
    if (value.Tag == VtStringW)
        return '\'' +
               Plain(Text(reinterpret_cast<const WCHAR*>(value.Bytes.data()),
                          value.Bytes.size() / sizeof(WCHAR) - 1)) +
               '\'';
    return '#' + std::to_string(value.Tag);
}

inline std::string Show(const Nodes& nodes, Flags flags = Flags::Hidden);

inline std::string Show(IACNode* node, Flags flags = Flags::Hidden) {
    std::string text = Plain(Name(node));
    if (const Text type = Type(node); !type.empty())
        text += ':' + Plain(type);
    std::string attributes;
    for (const Text& name : AttributeNames(node)) {
        attributes += attributes.empty() ? "" : " ";
        if (flags == Flags::Shown && ModifiedState(node, name.c_str()) == 0)
            attributes += '~';
        attributes += Plain(name) + '=' + ShowValue(Get(node, name.c_str()));
    }
    if (!attributes.empty())
        text += '{' + attributes + '}';
    Nodes children;
    for (size_t at = 0, count = ChildCount(node); at < count; ++at)
        children.push_back(ChildAt(node, at));
    if (!children.empty())
        text += '(' + Show(children, flags) + ')';
    return text;
}

inline std::string Show(const Nodes& nodes, Flags flags) {
    std::string text;
    for (const Node& node : nodes)
        text += (text.empty() ? "" : " ") + Show(node, flags);
    return text;
}

} // namespace treevault::tests

#endif
