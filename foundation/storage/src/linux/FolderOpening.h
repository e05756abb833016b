#pragma once

#include "../posix/FileDescriptor.h"

#include <string>

namespace Tolvex {

/// An open folder, or why there is none.
struct OpenedFolder {
    FileDescriptor descriptor;
    bool linkFree = true; ///< no link was met on the way: the path as spelled is the folder's own
    int error = 0;        ///< the system's number when `descriptor` is not open
};

/// A path of any length brought within what one system call takes (4,096 bytes): all but a last stretch of a longer one
/// is opened step by step. For the "at" family of calls: `call(anchor.GetFolder(), anchor.GetRest(), ...)`.
class PathAnchor {
public:
    /// `path` is absolute and outlives the anchor.
    explicit PathAnchor(const std::string& path);

    /// The system's error number when a step could not be taken; else 0.
    [[nodiscard]] int GetError() const noexcept { return reached.error; }
    [[nodiscard]] bool IsLinkFree() const noexcept { return reached.linkFree; }
    [[nodiscard]] int GetFolder() const noexcept;
    [[nodiscard]] const char* GetRest() const noexcept { return rest; }

private:
    OpenedFolder reached;
    const char* rest;
};

/// Opens a folder for listing, following links.
[[nodiscard]] OpenedFolder OpenFolderByPath(const std::string& path);

/// Opens the folder `name` inside an open one, following it when it is a link.
[[nodiscard]] OpenedFolder OpenChildFolder(int parent, const char* name);

/// True when something is at `path` and no link on the way to it, the last name included.
[[nodiscard]] bool ExistsWithoutLinks(const std::string& path);

} // namespace Tolvex
