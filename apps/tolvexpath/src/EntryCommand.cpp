#include "CacheArguments.h"
#include "Commands.h"
#include "EntryJson.h"
#include "EntryTree.h"
#include "FolderArguments.h"
#include "FoldersOnPath.h"
#include "JsonWriter.h"
#include "Messages.h"
#include "Output.h"
#include "PackageArguments.h"
#include "Terminal.h"

#include <CLI/CLI.hpp>

#include <string_view>
#include <utility>

namespace TolvexPath {

using PathManagement::PathEntryVector;

namespace {

constexpr const char* help = R"(The kind of a folder shows in its name: '+name' is a package, '@name' a class,
'@name' directly in another class folder a UDD class; 'private' and 'resources'
speak for themselves. Other child folders are not looked into.

Examples:
  tolvexpath entry examples/toolboxes/geometry
  tolvexpath entry --files toolboxes/*
  tolvexpath entry --path-file path.txt
  tolvexpath entry --json geometry | python3 -m json.tool

Exit status: 0 all folders were shown; 1 one, or a special folder in it, does
not exist or cannot be read; 2 wrong use.)";

class EntryCommand final : public ICommand {
public:
    [[nodiscard]] std::string GetName() const override { return "entry"; }
    [[nodiscard]] std::string GetSummary() const override { return "Show folders as the path sees them"; }
    void DeclareArguments(CLI::App& arguments) override;
    [[nodiscard]] ExitCode Run() override;

private:
    [[nodiscard]] PathEntryVector CreateEntries() const;
    void WriteJson(Output& output, const PathEntryVector& entries) const;
    void DrawTrees(Output& output, const PathEntryVector& entries) const;

    FolderArguments folders;
    CacheArguments cache;
    PackageArguments packages;
    bool hasFolders = false;
    bool asJson = false;
    bool withFiles = false;
};

void EntryCommand::DeclareArguments(CLI::App& arguments) {
    const auto takeFolders = [this](const CLI::results_t& names) {
        for (const std::string& name : names)
            folders.AddFolder(name);
        hasFolders = !names.empty();
        return true;
    };
    constexpr int anyNumber = CLI::detail::expected_max_vector_size;
    arguments.add_option("FOLDER", takeFolders, "The folders to show, if not those of a path")
        ->type_name("")
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        // An argument that takes extra values would read a folder "[a,b]" as a list of two. So extra values are refused
        // and the number is made large.
        ->expected(anyNumber - 1, anyNumber)
        ->allow_extra_args(false);
    folders.DeclareOptions(arguments);
    CLI::Option* const files = arguments.add_flag("-f,--files", withFiles, "List the files, too");
    arguments.add_flag("--json", asJson, "Write one JSON array with an object for each folder")->excludes(files);
    cache.DeclareOptions(arguments);
    packages.DeclareOptions(arguments);
    arguments.footer(help);
}

ExitCode EntryCommand::Run() {
    PathEntryVector entries = CreateEntries();
    Tolvex::Notification unreadable;
    TellUnreadableBelow(entries, unreadable);
    PrintMessages(unreadable);
    const bool isComplete = std::erase(entries, nullptr) == 0 && unreadable.IsEmpty();
    Output output;
    if (asJson)
        WriteJson(output, entries);
    else
        DrawTrees(output, entries);
    output.Flush();
    return isComplete ? ExitCode::success : ExitCode::notFound;
}

/// Of the folders that are named as such, else of a path with its packages.
PathEntryVector EntryCommand::CreateEntries() const {
    if (hasFolders)
        return cache.CreateEntries(folders.GetLocations());
    return packages.CreateEntries(cache, packages.GetLocations(folders));
}

void EntryCommand::WriteJson(Output& output, const PathEntryVector& entries) const {
    JsonWriter json(output);
    json.BeginArray();
    for (const auto& entry : entries)
        WriteEntryJson(json, *entry);
    json.EndArray();
    output.Write('\n');
}

void EntryCommand::DrawTrees(Output& output, const PathEntryVector& entries) const {
    const EntryTree tree(output, {.inColour = ShowsColour(StandardChannel::output), .withFiles = withFiles});
    std::string_view separator;
    for (const auto& entry : entries) {
        output.Write(std::exchange(separator, "\n"));
        tree.Draw(*entry);
    }
}

} // namespace

std::unique_ptr<ICommand> CreateEntryCommand() {
    return std::make_unique<EntryCommand>();
}

} // namespace TolvexPath
