// SPDX-License-Identifier: MIT
// error: the text of a result code.
#include "commands.h"
#include "failure.h"
#include "output.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <limits>
#include <memory>
#include <string_view>

namespace treevault::program {

namespace {

HRESULT ParseCode(const std::string& text) {
    std::string_view digits = text;
    int base = 10;
    if (digits.starts_with("0x") || digits.starts_with("0X")) {
        digits.remove_prefix(2);
        base = 16;
    }
    int64_t code = 0;
    const char* end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, code, base);
    const bool negativeHex = base == 16 && digits.starts_with("-");
    if (error != std::errc() || stop != end || negativeHex ||
        code < std::numeric_limits<int32_t>::min() || code > std::numeric_limits<uint32_t>::max())
        throw UsageFailure("'" + text + "' is no code of 32 bits");
    return static_cast<HRESULT>(code);
}

void Explain(HRESULT code) {
    Output output;
    output.Write(ErrorText(code) + "\n");
    output.Flush();
}

} // namespace

void AddErrorCommand(CLI::App& app, Work& chosen) {
    CLI::App* command = app.add_subcommand("error", "Print the text of a result code");
    auto code = std::make_shared<std::string>();
    command->add_option("CODE", *code, "Hexadecimal with 0x in front, or decimal")->required();
    command->callback([code, &chosen] { chosen = [code] { Explain(ParseCode(*code)); }; });
}

} // namespace treevault::program
