// SPDX-License-Identifier: MIT
// The commands of the program. Each adds itself to the command line, and `chosen` becomes the work
// of the one that the user names. The work throws DataFailure or UsageFailure.
#ifndef TREEVAULT_PROGRAM_COMMANDS_H
#define TREEVAULT_PROGRAM_COMMANDS_H

#include <functional>

namespace CLI {
class App;
}

namespace treevault::program {

using Work = std::function<void()>;

void AddShowCommand(CLI::App& app, Work& chosen);
void AddCheckCommand(CLI::App& app, Work& chosen);
void AddRewriteCommand(CLI::App& app, Work& chosen);
void AddStoreCommand(CLI::App& app, Work& chosen);
void AddSelectCommand(CLI::App& app, Work& chosen);
void AddDeleteCommand(CLI::App& app, Work& chosen);
void AddConvertCommand(CLI::App& app, Work& chosen);
void AddErrorCommand(CLI::App& app, Work& chosen);

} // namespace treevault::program

#endif
