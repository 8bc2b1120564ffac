// SPDX-License-Identifier: MIT
// How the program fails: with a message and an exit status.
#ifndef TREEVAULT_PROGRAM_FAILURE_H
#define TREEVAULT_PROGRAM_FAILURE_H

#include <treevault/platform.h>

#include <stdexcept>
#include <string>

namespace treevault::program {

enum ExitStatus { Success = 0, BadData = 1, BadUsage = 2 };

// The data or the files are at fault.
class DataFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The command line is.
class UsageFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The text of a failure of the library, from the pending error record where there is one. Takes
// the record.
std::string ErrorText(HRESULT code);

// Throws for a negative `code`; the message is `what`, ": " and the text of the failure.
void Check(HRESULT code, const std::string& what);

} // namespace treevault::program

#endif
