#pragma once

#include "path_interfaces/IPathEntry.h"

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace Tolvex {
class Notification;
}

namespace TolvexPath {

/// The folders that a command line names, in the order in which it names them; those of the environment variable
/// TOLVEXPATH, with ":" between them, when it names none.
class FolderArguments {
public:
    /// Declares -p/--path and --path-file, which fill this object; it has to stay where it is.
    void DeclareOptions(CLI::App& arguments);

    /// `folder` as bytes, absolute or relative to the working folder.
    void AddFolder(std::string folder);
    /// A file of folders, one a line; "-" is the standard input. Relative names start from the file's own folder, or
    /// from the working folder when the list comes from elsewhere than the disk. Blank lines, and lines whose first
    /// character that is no blank is a "#", are passed over; a carriage return at the end of a line does not belong to
    /// the name. Read when the locations are asked for.
    void AddListFile(std::string fileName);

    /// Whether there are folders, the variable's included; GetLocations needs some.
    [[nodiscard]] bool NamesFolders() const noexcept;
    [[nodiscard]] bool ReadsStandardInput() const noexcept;

    /// Every folder as it is spelled: "." and ".." stay, since what they mean depends on links. Throws UsageError when
    /// there is no folder, or one that no name can be; std::system_error for a list that cannot be read.
    [[nodiscard]] std::vector<Tolvex::AbsoluteIRI> GetLocations() const;

private:
    struct Source {
        std::string text;
        bool isListFile;
    };
    std::vector<Source> sources;
};

/// The location that a person names, as bytes, absolute or relative to the working folder. Throws UsageError for a text
/// that no name can be.
[[nodiscard]] Tolvex::AbsoluteIRI MakeLocation(std::string_view folder);

/// Has the entries of all locations made, with progress on a terminal. One place for each location; null where the
/// folder cannot be read, for which a message is written.
[[nodiscard]] PathManagement::PathEntryVector CreateEntries(const std::vector<Tolvex::AbsoluteIRI>& locations);

} // namespace TolvexPath
