#pragma once

#include "Finder.h"
#include "Output.h"
#include "Session.h"
#include "shell/ShellArguments.h"

#include "foundation/events/ScopedConnection.h"

#include <functional>
#include <map>

namespace TolvexPath {

/// What the commands of one shell work on.
class ShellContext {
public:
    using IRIs = PathManagement::IMainSearchPathManager::IRIs;

    /// `packagesFolder` as for Session.
    ShellContext(PathManagement::CurrentFolderPolicy policy, const std::optional<std::filesystem::path>& packagesFolder)
        : session(policy, packagesFolder) {}

    [[nodiscard]] Session& GetSession() noexcept { return session; }
    [[nodiscard]] PathManagement::IMainSearchPathManager& GetManager() noexcept { return session.GetManager(); }
    [[nodiscard]] Output& GetOutput() noexcept { return output; }

    /// Finds names on the present path, as the find command of the program does by default.
    [[nodiscard]] Finder MakeFinder(bool all);

    /// Tells people on the standard error output what went wrong, and where they told it to.
    void Report(std::string_view text) const;
    void Report(const Tolvex::Notification& problems) const;
    /// Where the present line comes from, as messages give it; empty for what was just typed in.
    void SetPlace(std::string newPlace) { place = std::move(newPlace); }

    /// Makes a change of the path and reports what goes wrong. True when nothing did.
    [[nodiscard]] bool Alter(const std::function<void(Tolvex::Notification&)>& change);
    /// Sets the folders of the path by Alter.
    [[nodiscard]] bool SetFolders(const IRIs& folders);

    /// Takes over what other processes have done to the installed packages, and reports what that did to the path.
    void FollowPackages();

    void End() noexcept { ended = true; }
    [[nodiscard]] bool IsEnded() const noexcept { return ended; }

    std::map<std::string, std::shared_ptr<const PathManagement::PathMemento>> mementos; // by the names they were given
    Tolvex::ScopedConnection eventTrace;                                                // while changes are traced
    PathManagement::PathManagerMutabilityPolicy mutability =
        PathManagement::PathManagerMutabilityPolicy::allAlterations;
    PathManagement::CurrentFolderPolicy currentFolder = PathManagement::CurrentFolderPolicy::trackWorkingFolder;

private:
    Session session;
    Output output;
    std::string place;
    bool ended = false;
};

/// Where a folder that somebody names lies; links are resolved as far as it exists. Throws UsageError.
[[nodiscard]] Tolvex::CanonicalAbsoluteIRI LocateFolder(const std::string& folder);

} // namespace TolvexPath
