// SPDX-License-Identifier: MIT
// delete: a document without one of its nodes, or without the children of one.
#include "commands.h"
#include "documentwriter.h"
#include "forest.h"
#include "path.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace treevault::program {

namespace {

struct DeleteOptions {
    std::string File;
    std::string Path;
    bool IsOfChildren = false;
    DocumentForm Form;
};

void DeleteNodes(const DeleteOptions& options) {
    const WideText path = ParsePath(options.Path);
    Forest forest;
    forest.Load(options.File);
    forest.RequireNode(path, InputTitle(options.File));
    forest.Delete({path, options.IsOfChildren});
    DocumentWriter writer(options.Form);
    forest.Write({}, writer);
    writer.Finish();
}

} // namespace

void AddDeleteCommand(CLI::App& app, Work& chosen) {
    CLI::App* command =
        app.add_subcommand("delete", "Delete a node of a document, and write what is left");
    auto options = std::make_shared<DeleteOptions>();
    command->add_option("FILE", options->File, "The document")->required();
    command->add_option("PATH", options->Path, "The node, as \\a\\b")->required();
    command->add_flag("--children", options->IsOfChildren,
                      "Its children instead; the top-level nodes for \\");
    options->Form.AddOptions(*command);
    command->footer("Nothing is written when there is no node at PATH, and the status is 1.");
    command->callback([options, &chosen] { chosen = [options] { DeleteNodes(*options); }; });
}

} // namespace treevault::program
