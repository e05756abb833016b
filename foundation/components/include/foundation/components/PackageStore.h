#pragma once

#include "foundation/components/IPackageRegistrar.h"
#include "foundation/components/InstalledPackages.h"

namespace TolvexPackages {

struct PackageInstallOptions {
    bool inPlace = false;   ///< use the folder where it lies, for whoever works on the package; else make a copy
    bool isAskedFor = true; ///< as in InstalledPackage
};

/// The installed packages in one folder on the disk: a file `registry.json` that records them, beside it a folder for
/// each package that was copied. Several processes may change one store at once: each change waits for the one before,
/// and is made whole or not at all, also when the process is killed or the machine stops half-way; what such an end
/// left lying is removed by the next change.
///
/// What is installed is what the packages' own manifests say. When somebody else has changed them, the change is seen
/// whenever the packages are read, and recorded by the next change of the store.
///
/// Each change ends with the registrar's new registry, and so with PackageRegistryHasBeenChanged; what a handler throws
/// then passes through, and the change stands. Operations throw PackageError for what a person can cure and
/// std::filesystem::filesystem_error for what the system refuses, and then nothing is changed. For one thread.
class KX_EXPORT PackageStore {
public:
    /// `folder` is made by the first installation. Registrar and event manager outlive the store.
    PackageStore(const std::filesystem::path& folder, IPackageRegistrar& registrar, Tolvex::EventMgr& events);

    [[nodiscard]] const std::filesystem::path& GetFolder() const noexcept { return folder; }

    /// The packages as they are now. Waits for nobody. Packages that cannot be used are there with their problem.
    [[nodiscard]] InstalledPackages Read() const;

    /// Puts the packages as they are now into the registrar; so a host begins.
    InstalledPackages Announce();

    /// As Announce, and records what somebody else has changed. Packages that cannot be used stay recorded: the disk
    /// that they lie on may come back.
    InstalledPackages Rescan();

    /// Refuses a version that is installed.
    ComponentIdentifier Install(const std::filesystem::path& package, const PackageInstallOptions& options = {});

    /// Puts a package in the place of the installed one of the same unique identifier, of which `replaced` tells the
    /// version where there are several. Order, and whether it is a copy, stay.
    ComponentIdentifier Update(const std::filesystem::path& package,
                               const std::optional<TolvexComponents::ComponentVersion>& replaced = {});

    /// Removes a package, and its folder when the store made it.
    void Remove(const ComponentIdentifier& identifier);

private:
    class Change;

    template <class Operation>
    auto MakeChange(const Operation& operation);

    std::filesystem::path folder;
    IPackageRegistrar& registrar;
    Tolvex::EventMgr& events;
};

/// "signals@1.4.0".
[[nodiscard]] KX_EXPORT Tolvex::ustring GetPackageText(const ComponentIdentifier& identifier);

} // namespace TolvexPackages
