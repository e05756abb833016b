#pragma once

#include "foundation/messages/Notification.h"
#include "path_interfaces/IPathEntry.h"

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace TolvexPath {

class Session;

/// The path cache file that a command line names, for commands that can do without listing folders.
class CacheArguments {
public:
    /// Declares --cache, --root and, where the command need not look at the folders anyway, --trust-cache, which fill
    /// this object; it has to stay where it is.
    void DeclareOptions(CLI::App& arguments, bool isTrustOffered = true);

    /// Loads the file, if one is named, into the process's factory. One that cannot be used is reported once, and the
    /// folders are read instead. True when a file was loaded.
    [[nodiscard]] bool Load() const;

    /// Says so when none of the entries came from the file, as with a wrong root. REQUIRES: a file was loaded.
    void TellIfUseless(const PathManagement::PathEntryVector& entries) const;

    /// Loads the file and has the entries of all locations made, as TolvexPath::CreateEntries does. Folders that
    /// changed since the file was written are listed, unless the file is to be trusted.
    [[nodiscard]] PathManagement::PathEntryVector
    CreateEntries(const std::vector<Tolvex::AbsoluteIRI>& locations) const;

    /// The same for a session: loads the file and sets the session's path. Gives what was left out and why.
    [[nodiscard]] Tolvex::Notification SetPath(Session& session,
                                               const std::vector<Tolvex::AbsoluteIRI>& locations) const;

private:
    std::optional<std::string> file;
    std::string root;
    bool isTrusted = false;
};

} // namespace TolvexPath
