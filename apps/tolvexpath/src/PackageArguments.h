#pragma once

#include "path_interfaces/IPathEntry.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace TolvexPath {

class CacheArguments;
class FolderArguments;

/// The installed packages that a command line puts on the path: those in the folder that it names, or that the
/// environment variable TOLVEX_PACKAGES does.
class PackageArguments {
public:
    /// Declares --packages, which fills this object; it has to stay where it is.
    void DeclareOptions(CLI::App& arguments);

    /// No value when nobody names one.
    [[nodiscard]] std::optional<std::filesystem::path> GetFolder() const;

    /// As FolderArguments::GetLocations, but none have to be named where packages are.
    [[nodiscard]] std::vector<Tolvex::AbsoluteIRI> GetLocations(const FolderArguments& folders) const;

    /// As CacheArguments::CreateEntries, with the packages in their places, for commands that need no session. What is
    /// to be told of packages is written.
    [[nodiscard]] PathManagement::PathEntryVector
    CreateEntries(const CacheArguments& cache, const std::vector<Tolvex::AbsoluteIRI>& locations) const;

private:
    std::string folder;
};

} // namespace TolvexPath
