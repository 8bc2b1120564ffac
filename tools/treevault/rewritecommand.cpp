// SPDX-License-Identifier: MIT
// rewrite: reads a document and writes it in the form that the library gives it.
#include "commands.h"
#include "document.h"
#include "documentwriter.h"
#include "inputfile.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace treevault::program {

namespace {

struct RewriteOptions {
    std::string File;
    DocumentForm Form;
    bool HasBom = false;
    bool HasNoTypes = false;
    bool HasFullPath = false;

    uint32_t Flags() const {
        uint32_t flags = 0;
        flags |= HasBom ? NodeSerializerFlagBom : 0;
        flags |= HasNoTypes ? NodeSerializerFlagNoValueTypes : 0;
        flags |= HasFullPath ? NodeSerializerFlagFullPath : 0;
        return flags;
    }
};

void CopyTrees(Document& document, DocumentWriter& writer, const std::string& title) {
    Progress progress("rewriting " + title);
    while (NodeHandle node = document.Next()) {
        IACNode* nodes[] = {node.Get()};
        writer.Add(nodes, 1,
                   title + ": cannot write top-level node " + std::to_string(document.Count()));
        progress.Count(document.Count());
    }
}

// A value that cannot be restored stops the rewriting: written as plain text it would lose its
// type for ever.
void Rewrite(const RewriteOptions& options) {
    Document document(options.File, NodeDeserializerFlagStrict);
    DocumentWriter writer(options.Form, options.Flags());
    CopyTrees(document, writer, InputTitle(options.File));
    writer.Finish();
}

} // namespace

void AddRewriteCommand(CLI::App& app, Work& chosen) {
    CLI::App* command = app.add_subcommand(
        "rewrite", "Read a document and write it again, to standard output or to a file");
    auto options = std::make_shared<RewriteOptions>();
    command->add_option("FILE", options->File, "The document")->required();
    options->Form.AddOptions(*command);
    command->add_flag("--bom", options->HasBom, "Begin with the byte order mark");
    command->add_flag("--no-types", options->HasNoTypes, "Leave the types of values out");
    command->add_flag("--full-path", options->HasFullPath, "Name top-level nodes by their paths");
    command->callback([options, &chosen] { chosen = [options] { Rewrite(*options); }; });
}

} // namespace treevault::program
