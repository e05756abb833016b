#include "FolderArguments.h"

#include "InputFile.h"
#include "LineReader.h"
#include "Messages.h"
#include "ProgressLine.h"
#include "UsageError.h"

#include "foundation/environment/WorkingFolder.h"
#include "path_utilities/UniformFolderMonitor.h"
#include "search_path/Accessors.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <utility>

namespace TolvexPath {

using PathManagement::PathEntryVector;
using Tolvex::AbsoluteIRI;

namespace {

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

void AppendListedLocations(std::vector<AbsoluteIRI>& locations, const std::string& fileName) {
    LineReader lines{InputFile(fileName)};
    while (const auto line = lines.Next())
        if (!line->empty())
            locations.push_back(MakeLocation(*line));
}

} // namespace

AbsoluteIRI MakeLocation(std::string_view folder) {
    if (folder.empty())
        throw UsageError("a folder's name is empty");
    if (folder.find('\0') != std::string_view::npos)
        throw UsageError("a folder's name holds a zero byte");
    const Tolvex::ustring path = Tolvex::FromUtf8(folder);
    if (path.front() == u'/')
        return AbsoluteIRI("file", path);
    return AbsoluteIRI("file", Tolvex::ustring(Tolvex::GetCurrentWorkingFolder().get().getPath()) + u'/' + path);
}

void FolderArguments::DeclareOptions(CLI::App& arguments) {
    DeclareRepeated(arguments, "-p,--path", "A folder of the path; repeat it for more, in path order", "FOLDER",
                    [this](std::string folder) { AddFolder(std::move(folder)); });
    DeclareRepeated(arguments, "--path-file", "A list of folders, one a line; '-' is the standard input", "FILE",
                    [this](std::string fileName) { AddListFile(std::move(fileName)); });
}

void FolderArguments::AddFolder(std::string folder) {
    sources.push_back({std::move(folder), false});
}

void FolderArguments::AddListFile(std::string fileName) {
    sources.push_back({std::move(fileName), true});
}

bool FolderArguments::ReadsStandardInput() const noexcept {
    return std::any_of(sources.begin(), sources.end(),
                       [](const Source& source) { return source.isListFile && source.text == "-"; });
}

std::vector<AbsoluteIRI> FolderArguments::GetLocations() const {
    std::vector<AbsoluteIRI> locations;
    for (const Source& source : sources) {
        if (source.isListFile)
            AppendListedLocations(locations, source.text);
        else
            locations.push_back(MakeLocation(source.text));
    }
    if (locations.empty())
        throw UsageError("no folder is named");
    return locations;
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
