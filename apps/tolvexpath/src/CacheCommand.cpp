#include "CacheReport.h"
#include "Commands.h"
#include "FolderArguments.h"
#include "FoldersOnPath.h"
#include "InputFile.h"
#include "JsonWriter.h"
#include "Messages.h"
#include "Output.h"
#include "OutputFile.h"

#include "foundation/environment/StorageAccess.h"
#include "path_utilities/ToolboxCacheFile.h"
#include "path_utilities/ToolboxCacheReader.h"
#include "search_path/Accessors.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <istream>
#include <streambuf>
#include <string_view>
#include <vector>

namespace TolvexPath {

using PathManagement::PathEntryVector;

namespace {

constexpr const char* help = R"(A path cache file records what the folders below one root hold, so that a
program can start without listing them. Commands that look at folders take one
with --cache and --root.

Examples:
  tolvexpath cache write toolboxes --path-file path.txt -o toolboxes.cache
  tolvexpath cache check toolboxes.cache
  tolvexpath cache show toolboxes.cache --json
  tolvexpath path --path-file path.txt --cache toolboxes.cache --root toolboxes

Exit status: 0 written, or whole; 1 the file is not whole, or a folder was left
out; 2 wrong use, not saved, or not to be read.)";

constexpr const char* writeHelp = R"(Main folders below ROOT are recorded with their special folders, as they are on
the disk now. Others are told and left out.

Examples:
  tolvexpath cache write toolboxes --path-file path.txt -o toolboxes.cache

Exit status: 0 written; 1 written, but a folder was left out or could not be
read; 2 wrong use, or not saved.)";

constexpr const char* readHelp = R"(Exit status: 0 the file is whole; 1 it is not, or is no path cache file; 2
wrong use, or it cannot be read.)";

class CacheCommand final : public ICommand {
public:
    [[nodiscard]] std::string GetName() const override { return "cache"; }
    [[nodiscard]] std::string GetSummary() const override { return "Write, check or show a path cache file"; }
    void DeclareArguments(CLI::App& arguments) override;
    [[nodiscard]] ExitCode Run() override;

private:
    void DeclareFile(CLI::App& arguments);
    [[nodiscard]] ExitCode Write() const;
    [[nodiscard]] ExitCode Read() const;

    CLI::App* write = nullptr;
    CLI::App* show = nullptr;
    FolderArguments folders;
    std::string root;
    std::string file;
    bool asJson = false;
};

/// The bytes of a file, or of a pipe, which cannot be gone back in. Throws std::system_error where nothing can be read.
class InputBuffer final : public std::streambuf {
public:
    explicit InputBuffer(const std::string& fileName) : input(fileName) {}

    /// What is read at once, and is still there to be read. Used before anything else.
    [[nodiscard]] std::string_view Peek() {
        underflow();
        return {gptr(), egptr()};
    }

protected:
    int_type underflow() override {
        const std::size_t count = input.Read(piece);
        setg(piece.data(), piece.data(), piece.data() + count);
        return count == 0 ? traits_type::eof() : traits_type::to_int_type(piece.front());
    }

private:
    InputFile input;
    std::vector<char> piece = std::vector<char>(1 << 16);
};

/// Tells a broken file from one that never was any.
bool BeginsAsCacheFile(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
    return text.starts_with("<Harrowfen ");
}

void CacheCommand::DeclareArguments(CLI::App& arguments) {
    arguments.require_subcommand(1);
    write = arguments.add_subcommand("write", "Record folders of a path that lie below a root");
    write->add_option("ROOT", root, "The folder that the recorded names are relative to")->type_name("")->required();
    folders.DeclareOptions(*write);
    write->add_option("-o,--output", file, "The file to write; an old one is replaced whole or stays")
        ->type_name("FILE")
        ->required();
    write->footer(writeHelp);
    DeclareFile(*arguments.add_subcommand("check", "Tell whether a file is whole"));
    show = arguments.add_subcommand("show", "Show what a file records, up to the first error");
    DeclareFile(*show);
    arguments.footer(help);
}

void CacheCommand::DeclareFile(CLI::App& arguments) {
    arguments.add_option("FILE", file, "The path cache file; '-' is the standard input")->type_name("")->required();
    arguments.add_flag("--json", asJson, "Write one JSON object");
    arguments.footer(readHelp);
}

ExitCode CacheCommand::Run() {
    return write->parsed() ? Write() : Read();
}

ExitCode CacheCommand::Write() const {
    RequireReplaceable(file);
    // A root that is missing is told before what of the path lies elsewhere than below it.
    static_cast<void>(TolvexStorageSystem::GetStorageSystemReference()->openFolder(MakeLocation(root)));
    const Tolvex::CanonicalAbsoluteIRI cacheRoot(MakeLocation(root), {});
    const PathEntryVector entries = CreateEntries(folders.GetLocations());
    std::size_t leftOut = 0;
    for (const auto& entry : entries) {
        const bool isRecorded = entry && cacheRoot.isAncestorOf(entry->GetIRI()) &&
                                entry->GetPathEntryType() == PathManagement::PathEntryType::mainFolder;
        leftOut += !isRecorded;
        if (entry && !isRecorded)
            PrintMessage(fmt::format("'{}' is left out: only main folders below '{}' are recorded{}",
                                     Tolvex::ToUtf8(entry->GetIRI().getPath()), Tolvex::ToUtf8(cacheRoot.getPath()),
                                     entry->GetIRI() == cacheRoot ? "; name its parent as ROOT" : ""));
    }
    Tolvex::Notification unreadable; // they are recorded as empty
    TellUnreadableBelow(entries, unreadable);
    PrintMessages(unreadable);
    PathManagement::WriteToolboxPathCache(PathManagement::GetPathEntryFactory(), cacheRoot, file);
    return leftOut == 0 && unreadable.IsEmpty() ? ExitCode::success : ExitCode::notFound;
}

ExitCode CacheCommand::Read() const {
    InputBuffer input(file);
    const bool isOne = BeginsAsCacheFile(input.Peek());
    std::istream stream(&input);
    stream.exceptions(std::ios::badbit); // so that what the buffer throws comes through
    Output output;
    const std::unique_ptr<CacheReport> report = CreateCacheReport(output, show->parsed(), asJson);
    std::string message;
    try {
        PathManagement::ReadToolboxCache(stream, [&](const auto& record) { report->Add(*record); });
    } catch (const PathManagement::ToolboxCacheWrongFormatException& refusal) {
        message = fmt::format("'{}'{}: {}", file, isOne ? "" : " is not a path cache file", refusal.what());
    }
    report->Finish(message);
    output.Flush();
    return message.empty() ? ExitCode::success : ExitCode::notFound;
}

} // namespace

std::unique_ptr<ICommand> CreateCacheCommand() {
    return std::make_unique<CacheCommand>();
}

} // namespace TolvexPath
