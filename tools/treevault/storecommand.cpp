// SPDX-License-Identifier: MIT
// store: puts changes into a forest, as atomic groups, and writes the forest.
#include "changewatcher.h"
#include "commands.h"
#include "documentwriter.h"
#include "failure.h"
#include "forest.h"
#include "path.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>

namespace treevault::program {

namespace {

struct NamedMode {
    const char* Name;
    StoreMode Mode;
};

constexpr NamedMode NamedModes[] = {{"merge-all", StoreMergeAll},
                                    {"merge-modified", StoreMergeModified},
                                    {"replace-attributes", StoreReplaceAttributes},
                                    {"replace-all", StoreReplaceAll}};

struct StoreOptions {
    std::string Base;
    std::vector<std::string> Changes;
    std::string ModeName = NamedModes[0].Name;
    std::string VetoedPath;
    bool BuildsNoParents = false;
    bool IsNotAtomic = false;
    bool IsOneGroup = false;
    bool IsWatched = false;
    DocumentForm Form;

    StoreMode Mode() const {
        for (const NamedMode& named : NamedModes)
            if (ModeName == named.Name)
                return named.Mode;
        throw UsageFailure("unknown mode '" + ModeName + "'");
    }
};

// A group that failed. Unless groups are atomic, a part of it may stand.
class GroupFailure : public DataFailure {
public:
    using DataFailure::DataFailure;
};

void CheckGroup(HRESULT result, const std::string& title, const ChangeWatcher& watcher) {
    watcher.RethrowProblem();
    try {
        Check(result, title + (watcher.HasVetoed() ? ": vetoed" : ": cannot store"));
    } catch (const DataFailure& failure) {
        throw GroupFailure(failure.what());
    }
}

void StoreChanges(Forest& forest, const StoreOptions& options, const ChangeWatcher& watcher) {
    if (!options.IsOneGroup) {
        for (const std::string& file : options.Changes)
            CheckGroup(forest.Store(file, options.Mode()), InputTitle(file), watcher);
        return;
    }
    const GroupHandle group = forest.BeginGroup();
    for (const std::string& file : options.Changes)
        Check(forest.Store(file, options.Mode(), group.Get()), InputTitle(file) + ": cannot store");
    CheckGroup(forest.Finalize(group.Get()), "the group", watcher);
}

// Standard input ends where the first reader leaves it.
void RequireOneStandardInput(const StoreOptions& options) {
    const auto count = std::ranges::count(options.Changes, StandardStream) +
                       (options.Base == StandardStream ? 1 : 0);
    if (count > 1)
        throw UsageFailure("standard input can be read only once");
}

void Store(const StoreOptions& options) {
    RequireOneStandardInput(options);
    WideText vetoedPath;
    if (!options.VetoedPath.empty())
        vetoedPath = ParsePath(options.VetoedPath);
    Output lines(false, options.Form.IsToStandardOutput() ? stderr : stdout);
    ChangeWatcher watcher(options.IsWatched ? &lines : nullptr, std::move(vetoedPath));
    Forest forest(!options.BuildsNoParents, !options.IsNotAtomic);
    forest.Load(options.Base);
    forest.Watch(watcher);
    std::exception_ptr failure;
    try {
        StoreChanges(forest, options, watcher);
    } catch (const GroupFailure&) {
        if (!options.IsNotAtomic)
            throw;
        failure = std::current_exception();
    }
    DocumentWriter writer(options.Form);
    forest.Write({}, writer);
    writer.Finish();
    if (failure)
        std::rethrow_exception(failure);
}

void AddGroupOptions(CLI::App& command, StoreOptions& options) {
    command.add_flag("--no-build-parents", options.BuildsNoParents,
                     "Refuse a node whose parent is missing, in BASE too, instead of making it");
    command.add_flag("--no-atomicity", options.IsNotAtomic,
                     "A group that fails keeps the nodes that it added and removed, and the forest "
                     "is written as it then stands");
    command.add_flag("--one-group", options.IsOneGroup, "All CHANGES are one group");
    command.add_flag("--watch", options.IsWatched,
                     "Print each notification as it happens: to standard output with -o OUT, to "
                     "standard error when the forest goes to standard output");
    command
        .add_option("--veto", options.VetoedPath,
                    "Refuse a change to the node at this path, as an observer may, to try what "
                    "rolling back does")
        ->type_name("PATH");
}

} // namespace

void AddStoreCommand(CLI::App& app, Work& chosen) {
    CLI::App* command =
        app.add_subcommand("store", "Store changes in the forest of a document, and write it");
    auto options = std::make_shared<StoreOptions>();
    command->add_option("BASE", options->Base, "The document that is changed")->required();
    command->add_option("CHANGES", options->Changes, "The documents that are stored in it")
        ->required();
    std::vector<std::string> modes;
    for (const NamedMode& named : NamedModes)
        modes.emplace_back(named.Name);
    command
        ->add_option("--mode", options->ModeName,
                     "How nodes of one path are merged: merge-all, merge-modified, "
                     "replace-attributes or replace-all")
        ->type_name("MODE")
        ->check(CLI::IsMember(modes));
    AddGroupOptions(*command, *options);
    options->Form.AddOptions(*command);
    command->footer(
        "A node whose name is a path, as \\a\\b, goes to that path. Nodes of one path, in BASE\n"
        "too, become one: merge-all, the default, sets the given attributes and leaves the rest;\n"
        "merge-modified does the same here, since all that is read counts as modified;\n"
        "replace-attributes deletes other attributes, and replace-all other children as well.\n"
        "BASE itself is read with merge-all.\n\n"
        "Each of CHANGES is a group: it is stored whole or not at all. The first group that\n"
        "fails ends the command with status 1. Then nothing is written, not even what earlier\n"
        "groups have stored, unless there is --no-atomicity.");
    command->callback([options, &chosen] { chosen = [options] { Store(*options); }; });
}

} // namespace treevault::program
