// SPDX-License-Identifier: MIT
// The program treevault: shows, checks and rewrites documents, stores changes in forests, converts
// values, explains codes.
#include "commands.h"
#include "console.h"
#include "failure.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <new>

namespace treevault::program {

namespace {

int Fail(const std::string& message, int status) {
    std::fprintf(stderr, "treevault: %s\n", message.c_str());
    return status;
}

int FailUsage(const std::string& message) {
    Fail(message, BadUsage);
    std::fputs("Run with --help for more information.\n", stderr);
    return BadUsage;
}

void DescribeCommands(CLI::App& app, Work& chosen) {
    // A name of a file may begin with "/", which is no sign of an option here.
    app.allow_windows_style_options(false);
    app.require_subcommand(1);
    app.set_version_flag("--version", "treevault " TREEVAULT_VERSION);
    app.footer("FILE may be -, which is standard input. The exit status is 0, 1 when the data or\n"
               "a file is at fault, or 2 when the command line is.");
    AddShowCommand(app, chosen);
    AddCheckCommand(app, chosen);
    AddRewriteCommand(app, chosen);
    AddStoreCommand(app, chosen);
    AddSelectCommand(app, chosen);
    AddDeleteCommand(app, chosen);
    AddConvertCommand(app, chosen);
    AddErrorCommand(app, chosen);
}

int Run(std::vector<std::string> arguments) {
    CLI::App app("Shows, checks, rewrites and changes documents of nodes.", "treevault");
    Work chosen;
    DescribeCommands(app, chosen);
    try {
        std::reverse(arguments.begin(), arguments.end()); // the order that the parser asks for
        app.parse(std::move(arguments));
        chosen();
        return Success;
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0)
            return app.exit(error); // help and version
        return FailUsage(error.what());
    } catch (const UsageFailure& error) {
        return FailUsage(error.what());
    } catch (const DataFailure& error) {
        return Fail(error.what(), BadData);
    } catch (const std::bad_alloc&) {
        return Fail("out of memory", BadData);
    } catch (const std::exception& error) {
        return Fail(error.what(), BadData);
    }
}

} // namespace

} // namespace treevault::program

int main(int argc, char** argv) {
    using namespace treevault::program;
    const StreamSetup streams;
    return Run(CommandLineArguments(argc, argv));
}
