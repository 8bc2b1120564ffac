// SPDX-License-Identifier: MIT
// Trees as lines for people: a line for each node, and one for each attribute.
#ifndef TREEVAULT_PROGRAM_TREEPRINTER_H
#define TREEVAULT_PROGRAM_TREEPRINTER_H

#include "handles.h"
#include "output.h"
#include "widetext.h"

#include <vector>

namespace treevault::program {

struct PrintOptions {
    uint64_t Depth = TREEVAULT_ALL_LEVELS; // levels below the first node
    bool IsWhole = false;                  // long values are not shortened
};

class TreePrinter {
public:
    TreePrinter(Output& out, const PrintOptions& options) : Out(out), Options(options) {}

    // Throws DataFailure.
    void Print(NodeHandle root);

private:
    void PrintNode(IACNode* node, uint64_t level, uint64_t childCount);
    void PrintAttribute(IACNode* node, const WideText& name);
    void PrintValue(ValueType type, const std::vector<WideText>& texts);
    void Indent(uint64_t level);

    Output& Out;
    PrintOptions Options;
};

} // namespace treevault::program

#endif
