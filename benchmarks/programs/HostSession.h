#pragma once

#include "path_interfaces/IPath.h"
#include "path_utilities/UniformFolderMonitor.h"

#include <string>
#include <vector>

namespace KxBenchmarks {

/// What a host of the library does before it can ask: folders become entries, entries become a path, all by way of the
/// exported accessors.
class HostSession {
public:
    explicit HostSession(PathManagement::FolderMonitoringLevel level = PathManagement::FolderMonitoringLevel::timeCheck)
        : monitor(level) {}

    /// Throws std::runtime_error when an entry is missing: what is measured would not be what it is taken for.
    [[nodiscard]] PathManagement::PathEntryVector CreateEntries(const std::vector<Tolvex::AbsoluteIRI>& folders) const;

    [[nodiscard]] static std::shared_ptr<const PathManagement::IPath>
    CreatePath(PathManagement::PathEntryVector&& entries,
               const std::shared_ptr<const PathManagement::IPath>& previous = nullptr);

    /// As the interpreter asks: in main folders, with its own extensions, ignoring case; the target is made here.
    [[nodiscard]] static std::optional<PathManagement::FoundItem> Find(const PathManagement::IPath& path,
                                                                       Tolvex::ustring_view name) {
        using namespace PathManagement;
        const SearchTarget target(name, GetExtensions());
        return path.FindFirstInScope(GetScope(), target, FilenameMatchingPolicy::ignoreCase);
    }

    /// What the interpreter asks for.
    [[nodiscard]] static PathManagement::SearchScope GetScope() { return {PathManagement::PathEntryType::mainFolder}; }
    [[nodiscard]] static std::span<const Tolvex::ustring> GetExtensions() {
        static const auto extensions = Tolvex::GetCodeFileExtensions();
        return extensions;
    }

private:
    PathManagement::UniformFolderMonitor monitor;
};

/// Both read absolute folders, one a line. Throw std::runtime_error when there is none.
[[nodiscard]] std::vector<std::string> ReadLines(const std::string& file);
[[nodiscard]] std::vector<Tolvex::AbsoluteIRI> ReadFolders(const std::string& file);

} // namespace KxBenchmarks
