// SPDX-License-Identifier: MIT
// show: a document, or one node of it, as a tree of lines.
#include "commands.h"
#include "document.h"
#include "failure.h"
#include "inputfile.h"
#include "path.h"
#include "treeprinter.h"
#include "treewalk.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>

namespace treevault::program {

namespace {

struct ShowOptions {
    std::string File;
    std::string Path = "\\";
    std::string Colours = "auto";
    PrintOptions Print;

    bool HasColours() const { return Colours == "always" || (Colours == "auto" && WantsColours()); }
};

// The node at `path` in the tree of `root`, or nothing.
NodeHandle Find(NodeHandle root, const WideText& path) {
    const WideText rootPath = NodeName(root.Get(), NameFullPath);
    if (!path.starts_with(rootPath) ||
        (path.size() > rootPath.size() && path[rootPath.size()] != PathSeparator))
        return {};
    for (size_t start = rootPath.size(); start < path.size();) {
        const size_t end = std::min(path.find(PathSeparator, start + 1), path.size());
        const WideText name = path.substr(start + 1, end - start - 1);
        NodeHandle child;
        const HRESULT result = AcnGetChildByName(root.Get(), name.c_str(), child.Receive());
        if (result == TREEVAULT_E_NOT_FOUND)
            return {};
        Check(result, "cannot look up a child");
        root = std::move(child);
        start = end;
    }
    return root;
}

void Show(const ShowOptions& options) {
    const WideText path = ParsePath(options.Path);
    const bool isWhole = path.size() == 1;
    Document document(options.File, 0);
    Output output(options.HasColours());
    TreePrinter printer(output, options.Print);
    bool isFound = isWhole;
    while (NodeHandle node = document.Next()) {
        if (!isWhole)
            node = Find(std::move(node), path);
        if (!node)
            continue;
        isFound = true;
        printer.Print(std::move(node));
    }
    output.Flush();
    if (!isFound)
        throw DataFailure(InputTitle(options.File) + ": there is no node " + options.Path);
}

} // namespace

void AddShowCommand(CLI::App& app, Work& chosen) {
    CLI::App* command = app.add_subcommand("show", "Show a document as a tree");
    auto options = std::make_shared<ShowOptions>();
    command->add_option("FILE", options->File, "The document")->required();
    command->add_option("--depth", options->Print.Depth, "Levels to show below the first")
        ->type_name("N")
        ->check(CLI::NonNegativeNumber);
    command->add_option("--path", options->Path, "Show only the node at this path, as \\a\\b")
        ->type_name("PATH");
    command->add_flag("--full", options->Print.IsWhole, "Do not shorten long values");
    command->add_option("--color", options->Colours, "Colours: auto, always or never")
        ->type_name("WHEN")
        ->check(CLI::IsMember({"auto", "always", "never"}));
    command->callback([options, &chosen] { chosen = [options] { Show(*options); }; });
}

} // namespace treevault::program
