#include "programs/HostSession.h"

#include "path_utilities/PathText.h"
#include "search_path/Accessors.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

namespace KxBenchmarks {

using namespace PathManagement;

PathEntryVector HostSession::CreateEntries(const std::vector<Tolvex::AbsoluteIRI>& folders) const {
    Tolvex::Notification problems;
    PathEntryVector entries = GetPathEntryFactory().CreatePathEntries(folders, monitor, problems);
    if (std::ranges::find(entries, nullptr) != entries.end())
        throw std::runtime_error("a folder of the path cannot be read");
    return entries;
}

std::shared_ptr<const IPath> HostSession::CreatePath(PathEntryVector&& entries,
                                                     const std::shared_ptr<const IPath>& previous) {
    return GetCurrentPathFactory().CreatePath(std::make_shared<const PathEntryVector>(std::move(entries)), previous);
}

std::vector<std::string> ReadLines(const std::string& file) {
    std::ifstream stream(file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    if (lines.empty())
        throw std::runtime_error("no folders in " + file);
    return lines;
}

std::vector<Tolvex::AbsoluteIRI> ReadFolders(const std::string& file) {
    std::vector<Tolvex::AbsoluteIRI> folders;
    for (const std::string& line : ReadLines(file))
        folders.push_back(GetIRIFromString(Tolvex::FromUtf8(line)));
    return folders;
}

} // namespace KxBenchmarks
