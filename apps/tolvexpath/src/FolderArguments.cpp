#include "FolderArguments.h"

#include "InputFile.h"
#include "LineReader.h"
#include "Messages.h"
#include "ProgressLine.h"
#include "UsageError.h"

#include "foundation/environment/StorageAccess.h"
#include "foundation/environment/WorkingFolder.h"
#include "path_utilities/UniformFolderMonitor.h"
#include "search_path/Accessors.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <utility>

namespace TolvexPath {

using PathManagement::PathEntryVector;
using Tolvex::AbsoluteIRI;

namespace {

constexpr const char* pathVariable = "TOLVEXPATH";

/// Declares an option that may be repeated; `take` gets each value when it is met, so that the order of different
/// options is kept.
void DeclareRepeated(CLI::App& arguments, const char* name, const char* description, const char* valueName,
                     std::function<void(std::string)> take) {
    const auto takeResults = [take = std::move(take)](const CLI::results_t& values) {
        std::for_each(values.begin(), values.end(), take);
        return true;
    };
    arguments.add_option(name, takeResults, description)
        ->type_name(valueName)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->trigger_on_parse();
}

bool IsFolderLine(std::string_view line) {
    const std::size_t start = line.find_first_not_of(" \t\r");
    return start != std::string_view::npos && line[start] != '#';
}

/// `base` is asked for when the first relative name comes, so that a list of absolute names needs no working folder.
AbsoluteIRI MakeLocationBelow(std::string_view folder, const std::function<AbsoluteIRI()>& base) {
    if (folder.empty())
        throw UsageError("a folder's name is empty");
    if (folder.find('\0') != std::string_view::npos)
        throw UsageError("a folder's name holds a zero byte");
    const Tolvex::ustring path = Tolvex::FromUtf8(folder);
    if (path.front() == u'/')
        return AbsoluteIRI("file", path);
    return AbsoluteIRI("file", Tolvex::ustring(base().getPath()) + u'/' + path);
}

/// What somebody may have meant by a name that no folder has; empty when nothing is likely.
std::string_view GetHint(std::string_view folder) {
    constexpr std::string_view blanks = " \t";
    constexpr std::string_view quotes = "'\"";
    if (folder.starts_with('~'))
        return "'~' is for the shell to replace; write the folder in full";
    if (quotes.find(folder.front()) != quotes.npos || quotes.find(folder.back()) != quotes.npos)
        return "quotes belong to the name here; leave them out";
    if (blanks.find(folder.front()) != blanks.npos || blanks.find(folder.back()) != blanks.npos)
        return "blanks at the ends belong to the name here; leave them out";
    if (folder.find(':') != folder.npos)
        return "':' separates folders in TOLVEXPATH only; give each its own -p, or its own line of a list";
    return {};
}

bool Exists(const AbsoluteIRI& folder) {
    try {
        static_cast<void>(TolvexStorageSystem::GetStorageSystemReference()->openFolder(folder));
    } catch (const Tolvex::StorageError&) {
        return false;
    }
    return true;
}

/// That the folder is missing is told elsewhere; only names that look like a slip are looked up here. `place` says
/// where the name stands, with a ": " behind it, or nothing.
void TellHint(std::string_view folder, const AbsoluteIRI& location, const std::string& place) {
    const std::string_view hint = GetHint(folder);
    if (!hint.empty() && !Exists(location))
        PrintMessage(fmt::format("{}there is no folder '{}': {}", place, folder, hint));
}

AbsoluteIRI GetWorkingFolder() {
    return Tolvex::GetCurrentWorkingFolder().get();
}

/// The folder that a file lies in, as the file's name spells it.
AbsoluteIRI GetFolderOfFile(const std::string& fileName) {
    const std::size_t separator = fileName.rfind('/');
    return separator == std::string::npos ? GetWorkingFolder() : MakeLocation(fileName.substr(0, separator + 1));
}

void AppendListedLocations(std::vector<AbsoluteIRI>& locations, const std::string& fileName) {
    InputFile file(fileName);
    const bool hasOwnFolder = file.IsOnDisk() && !fileName.starts_with("/dev/"); // there: another name of a file
    const auto base = [&] { return hasOwnFolder ? GetFolderOfFile(fileName) : GetWorkingFolder(); };
    LineReader lines(std::move(file));
    while (auto line = lines.Next()) {
        if (line->ends_with('\r')) // written on a system whose lines end so
            line->remove_suffix(1);
        if (!IsFolderLine(*line))
            continue;
        const std::string place = fmt::format("{}, line {}: ", lines.GetDisplayName(), lines.GetLineNumber());
        if (line->find('\0') != line->npos)
            throw UsageError(place + "a zero byte is in no folder's name; a list is text in UTF-8");
        locations.push_back(MakeLocationBelow(*line, base));
        TellHint(*line, locations.back(), place);
    }
}

void AppendDefaultLocations(std::vector<AbsoluteIRI>& locations) {
    const char* const value = std::getenv(pathVariable);
    std::string_view rest = value == nullptr ? "" : value;
    while (!rest.empty()) {
        const std::string_view folder = rest.substr(0, rest.find(':'));
        if (!folder.empty()) {
            locations.push_back(MakeLocation(folder));
            TellHint(folder, locations.back(), fmt::format("{}: ", pathVariable));
        }
        rest.remove_prefix(std::min(folder.size() + 1, rest.size()));
    }
}

} // namespace

AbsoluteIRI MakeLocation(std::string_view folder) {
    return MakeLocationBelow(folder, GetWorkingFolder);
}

void FolderArguments::DeclareOptions(CLI::App& arguments) {
    DeclareRepeated(arguments, "-p,--path",
                    "A folder of the path; repeat it for more, in path order [the folders in TOLVEXPATH, ':' between]",
                    "FOLDER", [this](std::string folder) { AddFolder(std::move(folder)); });
    DeclareRepeated(arguments, "--path-file",
                    "A list of folders, one a line, relative to the list's own folder; lines that start with '#' are "
                    "comments; '-' is the standard input",
                    "FILE", [this](std::string fileName) { AddListFile(std::move(fileName)); });
}

void FolderArguments::AddFolder(std::string folder) {
    sources.push_back({std::move(folder), false});
}

void FolderArguments::AddListFile(std::string fileName) {
    sources.push_back({std::move(fileName), true});
}

bool FolderArguments::NamesFolders() const noexcept {
    const char* const value = std::getenv(pathVariable);
    return !sources.empty() ||
           (value != nullptr && std::string_view(value).find_first_not_of(':') != std::string_view::npos);
}

bool FolderArguments::ReadsStandardInput() const noexcept {
    return std::any_of(sources.begin(), sources.end(),
                       [](const Source& source) { return source.isListFile && source.text == "-"; });
}

std::vector<AbsoluteIRI> FolderArguments::GetLocations() const {
    std::vector<AbsoluteIRI> locations;
    for (const Source& source : sources) {
        if (source.isListFile) {
            AppendListedLocations(locations, source.text);
            continue;
        }
        locations.push_back(MakeLocation(source.text));
        TellHint(source.text, locations.back(), "");
    }
    if (sources.empty())
        AppendDefaultLocations(locations);
    if (!locations.empty())
        return locations;
    if (sources.empty())
        throw UsageError(fmt::format("no folder is named; give -p or --path-file, or set {}", pathVariable));
    throw UsageError(fmt::format("no folder is named in {}", ReadsStandardInput() ? "the list on the standard input"
                                                                                  : "'" + sources.front().text + "'"));
}

PathEntryVector CreateEntries(const std::vector<AbsoluteIRI>& locations) {
    const PathManagement::IPathEntryFactory& factory = PathManagement::GetPathEntryFactory();
    Tolvex::Notification problems;
    PathEntryVector entries;
    {
        const ProgressLine progress(
            [&factory] { return fmt::format("{} folders read", factory.GetCounters().foldersListed); });
        entries = factory.CreatePathEntries(locations, PathManagement::UniformFolderMonitor(), problems);
    }
    PrintMessages(problems);
    return entries;
}

} // namespace TolvexPath
