#pragma once

#include "foundation/components/PackageStore.h"
#include "foundation/messages/Notification.h"
#include "foundation/observers/IFileFolderObserver.h"
#include "foundation/storage/StorageSystem.h"

namespace TolvexPath {

/// Keeps the process's registry of packages as a folder of installed packages has them, whoever changes that folder.
/// One a process; for one thread.
class PackageFollower {
public:
    /// Changes are published on `events`, which outlives the follower. The folder need not exist.
    PackageFollower(const std::filesystem::path& folder, Tolvex::EventMgr& events);

    /// Reads the packages and, when they are others than before, puts them into the registry. Gives a message for each
    /// package that cannot be used and was not told of before. Throws what PackageStore::Read does.
    Tolvex::Notification Announce();

    /// For a path that refused what was announced last: the registry becomes what it was before that, unheard, and the
    /// next call of Announce tells the difference again.
    void TakeBack();

    /// Whether some process may have put another record of the packages into the folder since it was read. What
    /// somebody writes into that file as it stands there, or into a package's own files, is not seen.
    [[nodiscard]] bool MayHaveChanged() const noexcept { return observer == nullptr || observer->hasChanged(); }

private:
    void ObserveFolder();

    TolvexPackages::IPackageRegistrar& registrar;
    Tolvex::EventMgr& events;
    const TolvexPackages::PackageStore store;
    const Tolvex::StorageSystemReference storage;
    std::unique_ptr<const Tolvex::IFileFolderObserver> observer; // from before the packages were read
    std::optional<std::vector<TolvexPackages::InstalledPackage>> announced;
    std::shared_ptr<const TolvexPackages::IPackageRegistry> before; // the registry before the last announcement
    bool isTakenBack = false;
};

/// The message about a file or folder of packages, under one of the keys of "TOLVEX:packages".
[[nodiscard]] Tolvex::MessageIdentifier MakePackageMessage(const char* key,
                                                           const TolvexPackages::PackageProblem& problem);

} // namespace TolvexPath
