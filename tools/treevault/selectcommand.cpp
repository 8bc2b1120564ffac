// SPDX-License-Identifier: MIT
// select: a node of a document, or its children, as a document of their own.
#include "commands.h"
#include "documentwriter.h"
#include "forest.h"
#include "path.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace treevault::program {

namespace {

struct SelectOptions {
    std::string File;
    std::string Path;
    bool IsOfChildren = false;
    uint64_t Depth = UINT32_MAX;
    DocumentForm Form;
};

// Named by their paths, the nodes go back to where they were when they are stored.
void SelectNodes(const SelectOptions& options) {
    const Selection selection{ParsePath(options.Path), options.IsOfChildren,
                              static_cast<uint32_t>(options.Depth)};
    Forest forest;
    forest.Load(options.File);
    forest.RequireNode(selection.Path, InputTitle(options.File));
    DocumentWriter writer(options.Form, NodeSerializerFlagFullPath);
    forest.Write(selection, writer);
    writer.Finish();
}

} // namespace

void AddSelectCommand(CLI::App& app, Work& chosen) {
    CLI::App* command =
        app.add_subcommand("select", "Write a node of a document as a document of its own");
    auto options = std::make_shared<SelectOptions>();
    command->add_option("FILE", options->File, "The document")->required();
    command->add_option("PATH", options->Path, "The node, as \\a\\b")->required();
    command->add_flag("--children", options->IsOfChildren,
                      "Its children instead; the top-level nodes for \\");
    command->add_option("--depth", options->Depth, "Levels to write below each node")
        ->type_name("N")
        ->check(CLI::Range(uint64_t{0}, uint64_t{UINT32_MAX}));
    options->Form.AddOptions(*command);
    command->footer("The names of the nodes are their paths, so that they go back there when they\n"
                    "are stored. The status is 1 when there is no node at PATH.");
    command->callback([options, &chosen] { chosen = [options] { SelectNodes(*options); }; });
}

} // namespace treevault::program
