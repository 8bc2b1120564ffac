// SPDX-License-Identifier: MIT
// rewrite: reads a document and writes it in the form that the library gives it.
#include "commands.h"
#include "document.h"
#include "failure.h"
#include "inputfile.h"
#include "outputfile.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <memory>

namespace treevault::program {

namespace {

struct RewriteOptions {
    std::string File;
    std::string Out = StandardStream;
    bool HasIndent = false;
    bool HasBom = false;
    bool HasNoTypes = false;
    bool HasFullPath = false;

    uint32_t Flags() const {
        uint32_t flags = 0;
        flags |= HasIndent ? NodeSerializerFlagIndent : 0;
        flags |= HasBom ? NodeSerializerFlagBom : 0;
        flags |= HasNoTypes ? NodeSerializerFlagNoValueTypes : 0;
        flags |= HasFullPath ? NodeSerializerFlagFullPath : 0;
        return flags;
    }
};

// Takes the text from the library, and keeps a failure that must not cross it.
struct TextTarget {
    std::string Name;
    std::exception_ptr Problem;

    static HRESULT TREEVAULT_CALL Write(const char* text, uint64_t size, void* context) {
        auto& target = *static_cast<TextTarget*>(context);
        try {
            OutputFile file(target.Name);
            file.Write({text, static_cast<size_t>(size)});
            file.Commit();
            return S_OK;
        } catch (...) {
            target.Problem = std::current_exception();
            return E_FAIL;
        }
    }
};

void CopyTrees(Document& document, INodeSerializer* writer, const std::string& title) {
    Progress progress("rewriting " + title);
    while (NodeHandle node = document.Next()) {
        IACNode* nodes[] = {node.Get()};
        Check(AcnSerializeNodes(writer, nodes, 1, TREEVAULT_ALL_LEVELS),
              title + ": cannot write top-level node " + std::to_string(document.Count()));
        progress.Count(document.Count());
    }
}

// A value that cannot be restored stops the rewriting: written as plain text it would lose its
// type for ever.
void Rewrite(const RewriteOptions& options) {
    Document document(options.File, NodeDeserializerFlagStrict);
    TextTarget target{options.Out, nullptr};
    SerializerHandle writer;
    Check(AcnStartSerialization(TREEVAULT_FORMAT_XML, options.Flags(), TextTarget::Write, &target,
                                writer.Receive()),
          "cannot begin to write");
    CopyTrees(document, writer.Get(), InputTitle(options.File));
    const HRESULT result = AcnFinalizeSerialization(writer.Get());
    if (target.Problem)
        std::rethrow_exception(target.Problem);
    Check(result, options.Out + ": cannot write");
}

} // namespace

void AddRewriteCommand(CLI::App& app, Work& chosen) {
    CLI::App* command = app.add_subcommand(
        "rewrite", "Read a document and write it again, to standard output or to a file");
    auto options = std::make_shared<RewriteOptions>();
    command->add_option("FILE", options->File, "The document")->required();
    command
        ->add_option("-o", options->Out,
                     "The file to write, replaced when all is written; may be FILE itself")
        ->type_name("OUT");
    command->add_flag("--indent", options->HasIndent, "A line for each element, with tabs");
    command->add_flag("--bom", options->HasBom, "Begin with the byte order mark");
    command->add_flag("--no-types", options->HasNoTypes, "Leave the types of values out");
    command->add_flag("--full-path", options->HasFullPath, "Name top-level nodes by their paths");
    command->callback([options, &chosen] { chosen = [options] { Rewrite(*options); }; });
}

} // namespace treevault::program
