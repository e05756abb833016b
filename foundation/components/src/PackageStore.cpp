#include "foundation/components/PackageStore.h"

#include "FolderNesting.h"
#include "PackageRegistryFile.h"
#include "posix/PackageFolders.h"
#include "posix/StoreLock.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace TolvexPackages {

namespace fs = std::filesystem;

using Tolvex::ToUtf8;
using TolvexComponents::ComponentVersion;

namespace {

constexpr const char* registryFileName = "registry.json";
constexpr const char* lockFileName = "registry.lock";

using Identifiers = std::unordered_set<ComponentIdentifier, TolvexComponents::ComponentIdentifierHash>;

std::string Describe(const ComponentIdentifier& identifier) {
    return '\'' + ToUtf8(GetPackageText(identifier)) + '\'';
}

fs::path GetRoot(const fs::path& store, const RecordedPackage& package) {
    return package.isManaged ? store / package.folder : fs::path(package.folder);
}

/// What the disk says of a package now. `taken` are the identifiers that the package, unless it has one of them by
/// record, may not have.
InstalledPackage Look(const fs::path& store, const RecordedPackage& recorded, Identifiers& taken) {
    InstalledPackage package{.manifest = recorded.manifest,
                             .root = GetRoot(store, recorded),
                             .order = recorded.order,
                             .isManaged = recorded.isManaged,
                             .isAskedFor = recorded.isAskedFor};
    try {
        auto manifest = ReadPackageManifest(package.root);
        const ComponentIdentifier& identifier = manifest.identifier;
        if (!(identifier == recorded.manifest.identifier) && !taken.insert(identifier).second)
            throw PackageError({(package.root / PackageManifest::fileName).native(), 0,
                                "says that this is " + Describe(identifier) + ", which is installed elsewhere"});
        package.isChanged = !(manifest == recorded.manifest);
        package.manifest = std::move(manifest);
    } catch (const PackageError& error) {
        package.problem = error.GetProblem();
    } catch (const fs::filesystem_error& error) {
        package.problem = PackageProblem{package.root.native(), 0, error.code().message()};
    }
    return package;
}

/// One for each recorded package, in order.
std::vector<InstalledPackage> Look(const fs::path& store, const RecordedPackages& recorded) {
    Identifiers taken;
    for (const auto& package : recorded.packages)
        taken.insert(package.manifest.identifier);
    std::vector<InstalledPackage> packages;
    for (const auto& package : recorded.packages)
        packages.push_back(Look(store, package, taken));
    return packages;
}

bool HasProblem(const std::vector<InstalledPackage>& packages) {
    return std::any_of(packages.begin(), packages.end(), [](const auto& package) { return package.problem; });
}

/// The registry file is JSON, which holds no other bytes.
bool IsUtf8(const std::string& bytes) {
    const Tolvex::ustring text = Tolvex::FromUtf8(bytes);
    const auto isIn = [](char16_t unit, char16_t first, char16_t last) { return unit >= first && unit <= last; };
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isIn(text[i], 0xD800, 0xDBFF))
            ++i; // the first of two
        else if (isIn(text[i], 0xDC00, 0xDFFF))
            return false;
    }
    return true;
}

} // namespace

/// One change of the store: nobody else changes it meanwhile.
class PackageStore::Change {
public:
    explicit Change(const fs::path& folder) : store(MakeFolder(folder)), lock(store / lockFileName) {
        recorded = ReadRegistryFile(GetFile());
        TakeOverChanges();
        RemoveLeftovers();
    }

    void Commit() {
        WriteRegistryFile(GetFile(), recorded);
        isRecorded = true;
    }

    /// Records what was found changed and what of the leftovers is gone, if nothing else was.
    void Finish() {
        RemoveLeftovers();
        if (!isRecorded)
            Commit();
    }

    /// For a change that stands already: what cannot be recorded now is left to a later one.
    void TidyUp() {
        try {
            Finish();
        } catch (const fs::filesystem_error&) { // what was removed is removed again, which is no error
        }
    }

    ComponentIdentifier Install(const fs::path& source, const PackageInstallOptions& options) {
        PackageManifest manifest = ReadPackageManifest(source);
        RefuseInstalled(manifest.identifier, nullptr);
        RecordedPackage package{.manifest = std::move(manifest),
                                .folder = {},
                                .order = recorded.nextNumber++,
                                .isManaged = !options.inPlace,
                                .isAskedFor = options.isAskedFor};
        Place(source, package, package.order);
        recorded.packages.push_back(std::move(package));
        Commit();
        return recorded.packages.back().manifest.identifier;
    }

    ComponentIdentifier Update(const fs::path& source, const std::optional<ComponentVersion>& version) {
        PackageManifest manifest = ReadPackageManifest(source);
        RecordedPackage& replaced = FindReplaced(source, manifest.identifier, version);
        RefuseInstalled(manifest.identifier, &replaced);
        RecordedPackage package = replaced;
        package.manifest = std::move(manifest);
        Place(source, package, recorded.nextNumber++);
        if (replaced.isManaged)
            recorded.leftovers.push_back(replaced.folder);
        replaced = std::move(package);
        Commit();
        return replaced.manifest.identifier;
    }

    void Remove(const ComponentIdentifier& identifier) {
        auto& packages = recorded.packages;
        const auto found = std::find_if(packages.begin(), packages.end(), [&identifier](const auto& package) {
            return package.manifest.identifier == identifier;
        });
        if (found == packages.end())
            throw PackageError({store.native(), 0, Describe(identifier) + " is not installed here"});
        if (found->isManaged)
            recorded.leftovers.push_back(found->folder);
        packages.erase(found);
        Commit();
    }

private:
    static const fs::path& MakeFolder(const fs::path& folder) {
        fs::create_directories(folder);
        return folder;
    }

    [[nodiscard]] fs::path GetFile() const { return store / registryFileName; }

    void TakeOverChanges() {
        const auto packages = Look(store, recorded);
        for (std::size_t i = 0; i < packages.size(); ++i) {
            if (!packages[i].isChanged)
                continue;
            recorded.packages[i].manifest = packages[i].manifest;
            isRecorded = false;
        }
    }

    /// What cannot be removed now is left to a later change.
    void RemoveLeftovers() {
        const auto remove = [this](const std::string& name) {
            try {
                RemovePackageFolder(store / name);
            } catch (const fs::filesystem_error&) {
                return false;
            }
            isRecorded = false;
            return true;
        };
        std::erase_if(recorded.leftovers, remove);
    }

    static std::string GetAdvice(const RecordedPackage& installed, const ComponentIdentifier& identifier) {
        return installed.manifest.identifier.GetName() == identifier.GetName()
                   ? ""
                   : ", or give " + Describe(identifier) + " an id of its own, as 'uuidgen' makes them";
    }

    void RefuseInstalled(const ComponentIdentifier& identifier, const RecordedPackage* replaced) const {
        for (const auto& package : recorded.packages) {
            if (&package != replaced && package.manifest.identifier == identifier)
                throw PackageError({GetRoot(store, package).native(), 0,
                                    Describe(package.manifest.identifier) +
                                        " is installed already; update or remove it" + GetAdvice(package, identifier)});
        }
    }

    RecordedPackage& FindReplaced(const fs::path& source, const ComponentIdentifier& identifier,
                                  const std::optional<ComponentVersion>& version) {
        RecordedPackage* found = nullptr;
        for (auto& package : recorded.packages) {
            const ComponentIdentifier& installed = package.manifest.identifier;
            if (installed.GetUniqueID() != identifier.GetUniqueID() || (version && installed.GetVersion() != *version))
                continue;
            if (found != nullptr)
                throw PackageError({source.native(), 0,
                                    "several versions of '" + ToUtf8(identifier.GetName()) +
                                        "' are installed; say which one is to be replaced"});
            found = &package;
        }
        if (found != nullptr)
            return *found;
        throw PackageError({source.native(), 0,
                            "no version of '" + ToUtf8(identifier.GetName()) +
                                "' with this unique identifier is installed that could be replaced; install it"});
    }

    /// Sees to the package's folder and says in `package` where it is. `number` was given to nobody else.
    void Place(const fs::path& source, RecordedPackage& package, std::uint64_t number) {
        const fs::path place = fs::canonical(source);
        const fs::path own = fs::canonical(store);
        if (IsSameOrBelow(place, own) || IsSameOrBelow(own, place))
            throw PackageError({source.native(), 0, "lies in the folder of the installed packages, or around it"});
        if (package.isManaged)
            Copy(place, package, number);
        else
            RegisterInPlace(place, package);
    }

    void RegisterInPlace(const fs::path& place, RecordedPackage& package) const {
        if (!IsUtf8(place.native()))
            throw PackageError({place.native(), 0, "has a name that is no UTF-8 and cannot be recorded; rename it"});
        for (const auto& other : recorded.packages) {
            if (other.folder == place.native() && !(package.folder == other.folder))
                throw PackageError({place.native(), 0, "is installed already; remove what was installed from it"});
        }
        package.folder = place.native();
    }

    /// The copy is recorded as a leftover before it is begun and until the package itself is recorded.
    void Copy(const fs::path& place, RecordedPackage& package, std::uint64_t number) {
        const ComponentIdentifier& identifier = package.manifest.identifier;
        package.folder = ToUtf8(identifier.GetName()) + '-' + ToUtf8(identifier.GetVersion().toString()) + '.' +
                         std::to_string(number);
        recorded.leftovers.push_back(package.folder);
        Commit();
        try {
            CopyPackageFolder(place, store / package.folder);
            package.manifest = ReadPackageManifest(store / package.folder);
            if (!(package.manifest.identifier == identifier))
                throw PackageError({place.native(), 0, "was changed while it was copied; try again"});
        } catch (...) {
            RemoveLeftovers();
            throw;
        }
        std::erase(recorded.leftovers, package.folder);
    }

    fs::path store;
    StoreLock lock;
    RecordedPackages recorded;
    bool isRecorded = true; // the file holds what `recorded` does
};

PackageStore::PackageStore(const fs::path& folder, IPackageRegistrar& registrar, Tolvex::EventMgr& events)
    : folder(fs::absolute(folder)), registrar(registrar), events(events) {}

InstalledPackages PackageStore::Read() const {
    if (fs::exists(folder) && !fs::is_directory(folder))
        throw PackageError({folder.native(), 0, "is no folder, so that no packages can be installed there"});
    const fs::path file = folder / registryFileName;
    for (RecordedPackages recorded = ReadRegistryFile(file);;) {
        auto packages = Look(folder, recorded);
        if (!HasProblem(packages))
            return InstalledPackages(std::move(packages));
        // Somebody may have removed, between the two looks, what was recorded.
        auto again = ReadRegistryFile(file);
        if (again == recorded)
            return InstalledPackages(std::move(packages));
        recorded = std::move(again);
    }
}

InstalledPackages PackageStore::Announce() {
    InstalledPackages packages = Read();
    registrar.ReplaceRegistry(packages.CreateRegistry(), events);
    return packages;
}

InstalledPackages PackageStore::Rescan() {
    if (fs::exists(folder))
        Change(folder).Finish();
    return Announce();
}

template <class Operation>
auto PackageStore::MakeChange(const Operation& operation) {
    const auto make = [&] {
        Change change(folder);
        auto result = operation(change);
        change.TidyUp();
        return result;
    };
    auto result = make();
    Announce(); // when others may change the store again: handlers take their time
    return result;
}

ComponentIdentifier PackageStore::Install(const fs::path& package, const PackageInstallOptions& options) {
    static_cast<void>(ReadPackageManifest(package)); // before a store is made for what is no package
    return MakeChange([&](Change& change) { return change.Install(package, options); });
}

ComponentIdentifier PackageStore::Update(const fs::path& package, const std::optional<ComponentVersion>& replaced) {
    static_cast<void>(ReadPackageManifest(package));
    return MakeChange([&](Change& change) { return change.Update(package, replaced); });
}

void PackageStore::Remove(const ComponentIdentifier& identifier) {
    MakeChange([&](Change& change) {
        change.Remove(identifier);
        return identifier;
    });
}

Tolvex::ustring GetPackageText(const ComponentIdentifier& identifier) {
    return identifier.GetName() + u"@" + identifier.GetVersion().toString();
}

} // namespace TolvexPackages
