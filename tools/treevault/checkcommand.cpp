// SPDX-License-Identifier: MIT
// check: reads a document as strictly as the library can, and counts what is in it.
#include "commands.h"
#include "document.h"
#include "failure.h"
#include "inputfile.h"
#include "output.h"
#include "treewalk.h"
#include "value.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace treevault::program {

namespace {

struct Counts {
    uint64_t Nodes = 0;
    uint64_t Attributes = 0;
};

void CountTree(NodeHandle root, Counts& counts) {
    WalkTree(std::move(root), TREEVAULT_ALL_LEVELS, [&](IACNode* node, uint64_t, uint64_t) {
        ++counts.Nodes;
        counts.Attributes += AttributeNames(node).size();
    });
}

std::string Quantity(uint64_t number, const std::string& thing) {
    return std::to_string(number) + " " + thing + (number == 1 ? "" : "s");
}

void CheckDocument(const std::string& file) {
    Document document(file, NodeDeserializerFlagStrict);
    Counts counts;
    {
        Progress progress("checking " + InputTitle(file));
        while (NodeHandle node = document.Next()) {
            CountTree(std::move(node), counts);
            progress.Count(document.Count());
        }
    }
    Output output;
    output.Write(InputTitle(file) + ": " + Quantity(document.Count(), "top-level node") + ", " +
                 Quantity(counts.Nodes, "node") + ", " + Quantity(counts.Attributes, "attribute") +
                 "\n");
    output.Flush();
}

} // namespace

void AddCheckCommand(CLI::App& app, Work& chosen) {
    CLI::App* command = app.add_subcommand(
        "check", "Read a document strictly, and tell what is in it or what is wrong with it");
    auto file = std::make_shared<std::string>();
    command->add_option("FILE", *file, "The document")->required();
    command->callback([file, &chosen] { chosen = [file] { CheckDocument(*file); }; });
}

} // namespace treevault::program
