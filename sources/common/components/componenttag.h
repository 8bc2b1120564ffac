// SPDX-License-Identifier: MIT
// The names under which components show up in the list of those alive.
#ifndef TREEVAULT_COMMON_COMPONENTS_COMPONENTTAG_H
#define TREEVAULT_COMMON_COMPONENTS_COMPONENTTAG_H

#include <array>
#include <string_view>

namespace treevault {

namespace detail {

// The type as the compiler spells it.
template <class T>
consteval std::string_view SpelledType() {
    constexpr std::string_view function = __PRETTY_FUNCTION__;
    constexpr std::string_view mark = "T = ";
    constexpr size_t begin = function.find(mark) + mark.size();
    return function.substr(begin, function.find_first_of(";]", begin) - begin);
}

// Text of a fixed capacity, zero-terminated, made while compiling.
template <size_t Capacity>
struct FixedText {
    std::array<char, Capacity> Units{};
    size_t Length = 0;

    constexpr void Append(std::string_view text) {
        for (const char unit : text)
            Units[Length++] = unit;
    }
};

// The type with "class" in place of the namespace that all classes are in.
template <class T>
consteval auto MakeComponentTag() {
    constexpr std::string_view home = "treevault::";
    FixedText<2 * SpelledType<T>().size() + 64> tag;
    tag.Append("CComponentObject<");
    for (std::string_view rest = SpelledType<T>(); !rest.empty();) {
        const bool atHome = rest.starts_with(home);
        tag.Append(atHome ? "class " : rest.substr(0, 1));
        rest.remove_prefix(atHome ? home.size() : 1);
    }
    // Two angle brackets in a row stand apart.
    tag.Append(SpelledType<T>().ends_with('>') ? " >" : ">");
    tag.Append("::CComponentObject");
    return tag;
}

template <class T>
inline constexpr auto ComponentTagText = MakeComponentTag<T>();

} // namespace detail

// "CComponentObject<class CMemoryStorage>::CComponentObject", for instance.
template <class T>
inline constexpr const char* ComponentTag = detail::ComponentTagText<T>.Units.data();

} // namespace treevault

#endif
