// SPDX-License-Identifier: MIT
// The C++ sample of README.md.
#include "treevaultcpp.h" // small wrappers, in examples/cpp

#include <iostream>

int main() {
    using namespace example;
    const Node shelf = Create(TREEVAULT_WIDE("shelf"), TREEVAULT_WIDE("furniture"));
    Set(shelf, TREEVAULT_WIDE("boards"), 5);
    Set(shelf, TREEVAULT_WIDE("wood"), "oak");

    const Node copy = Clone(shelf);
    Check(AcnSetNodeName(copy.get(), NameShort, TREEVAULT_WIDE("second shelf")));
    Check(AcnAddChild(shelf.get(), copy.get()));
    std::cout << Get(copy, TREEVAULT_WIDE("boards")) << "\n"; // the number, as text

    try {
        Check(AcnAddChild(shelf.get(), copy.get())); // it has a parent already
    } catch (const Error& error) {
        std::cout << error.what() << "\n"; // 0x80040205, and what is known of the failure
    }
}
