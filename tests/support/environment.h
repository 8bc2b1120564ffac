// SPDX-License-Identifier: MIT
// Environment variables of the test program, set so that the library sees them.
#ifndef TREEVAULT_TESTS_SUPPORT_ENVIRONMENT_H
#define TREEVAULT_TESTS_SUPPORT_ENVIRONMENT_H

#include <string>
#include <utility>

namespace treevault::tests {

// The value is UTF-8 and may be empty; null takes the variable away.
void SetVariable(const char* name, const char* value);

// A variable that is set while this lives.
class VariableInForce {
public:
    VariableInForce(std::string name, const char* value) : Name(std::move(name)) { Change(value); }
    ~VariableInForce() { Change(nullptr); }
    VariableInForce(const VariableInForce&) = delete;
    VariableInForce& operator=(const VariableInForce&) = delete;

    void Change(const char* value) { SetVariable(Name.c_str(), value); }

private:
    std::string Name;
};

} // namespace treevault::tests

#endif
