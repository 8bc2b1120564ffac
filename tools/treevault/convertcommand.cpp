// SPDX-License-Identifier: MIT
// convert: one value from one type to another, by way of the library.
#include "commands.h"
#include "failure.h"
#include "output.h"
#include "value.h"

#include <CLI/CLI.hpp>

namespace treevault::program {

namespace {

// The value that the texts of the command line mean in type `type`.
Value MakeValue(ValueType type, const std::vector<std::string>& texts) {
    if (type == VtEmpty && texts.empty())
        return {VtEmpty, {}};
    if (!IsArray(type) && texts.size() != 1)
        throw UsageFailure("one value of type " + TypeName(type) + " is needed, not " +
                           std::to_string(texts.size()));
    Value source{IsArray(type) ? VtStringAArray : VtStringA, {}};
    for (const std::string& text : texts)
        source.Bytes.append(text.c_str(), text.size() + 1);
    return Converted(source, type);
}

void PrintValue(const Value& value, Output& output) {
    const Value text = Converted(value, IsArray(value.Type) ? VtStringWArray : VtStringW);
    for (const WideText& line : Texts(text))
        output.Write(ToUtf8(line) + "\n");
}

void Convert(const std::vector<std::string>& arguments) {
    if (arguments.size() < 2)
        throw UsageFailure("convert needs TYPE, VALUE and TO-TYPE");
    const ValueType from = ParseTypeName(arguments.front());
    const ValueType to = ParseTypeName(arguments.back());
    const Value value = MakeValue(from, {arguments.begin() + 1, arguments.end() - 1});
    Output output;
    PrintValue(Converted(value, to), output);
    output.Flush();
}

} // namespace

void AddConvertCommand(CLI::App& app, Work& chosen) {
    CLI::App* command =
        app.add_subcommand("convert", "Convert a value and print the result as text");
    // Whatever stands behind the name of the command is a type or a value, "-1" and "--" too.
    command->prefix_command();
    command->footer("Arguments: TYPE VALUE... TO-TYPE\n\n"
                    "Types: Empty, StringA, StringW, Int32, UInt32, Int64, UInt64, Bool, Binary\n"
                    "and Guid, with or without Vt in front. Int32[] is an array of Int32: it\n"
                    "takes any number of values, and is printed one element to a line.");
    command->callback([command, &chosen] {
        const std::vector<std::string> arguments = command->remaining();
        chosen = [arguments] { Convert(arguments); };
    });
}

} // namespace treevault::program
