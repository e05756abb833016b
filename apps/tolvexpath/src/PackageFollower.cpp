#include "PackageFollower.h"

#include "foundation/environment/StorageAccess.h"
#include "foundation/observers/IFileFolderObserverFactory.h"

#include <algorithm>
#include <utility>

namespace TolvexPath {

using Tolvex::ChangeMark;
using Tolvex::FromUtf8;
using TolvexPackages::InstalledPackage;

namespace {

ChangeMark TakeMark(const Tolvex::StorageSystemReference& storage, const Tolvex::AbsoluteIRI& folder) {
    try {
        return storage->openFolder(folder)->getChangeMark();
    } catch (const Tolvex::StorageError&) {
        return {}; // of a folder that may come
    }
}

bool IsTold(const std::vector<InstalledPackage>& told, const InstalledPackage& package) {
    return std::ranges::any_of(told, [&package](const auto& other) { return other.problem == package.problem; });
}

} // namespace

PackageFollower::PackageFollower(const std::filesystem::path& folder, Tolvex::EventMgr& events)
    : registrar(TolvexPackages::GetPackageRegistrar()), events(events), store(folder, registrar, events),
      storage(TolvexStorageSystem::GetStorageSystemReference()) {}

Tolvex::Notification PackageFollower::Announce() {
    ObserveFolder();
    const TolvexPackages::InstalledPackages installed = store.Read();
    Tolvex::Notification problems;
    for (const InstalledPackage& package : installed.Get())
        if (package.problem && !(announced && IsTold(*announced, package)))
            problems.Add(MakePackageMessage("unusablePackage", *package.problem));
    if (isTakenBack || announced != installed.Get()) {
        isTakenBack = false;
        announced = installed.Get();
        before = registrar.GetRegistry();
        registrar.ReplaceRegistry(installed.CreateRegistry(), events);
    }
    return problems;
}

void PackageFollower::TakeBack() {
    registrar.ReplaceRegistry(before, *Tolvex::createEventMgr());
    isTakenBack = true;
}

/// To be done before the packages are read, so that what changes meanwhile is seen later.
void PackageFollower::ObserveFolder() {
    const Tolvex::CanonicalAbsoluteIRI folder(Tolvex::AbsoluteIRI("file", FromUtf8(store.GetFolder().native())), u"");
    observer = Tolvex::GetFileFolderObserverFactory(storage).createObserver(folder, TakeMark(storage, folder),
                                                                            Tolvex::ObservationLevel::notification);
}

Tolvex::MessageIdentifier MakePackageMessage(const char* key, const TolvexPackages::PackageProblem& problem) {
    const std::string line = problem.line == 0 ? "" : "line " + std::to_string(problem.line) + ": ";
    return {"TOLVEX:packages", key, {FromUtf8(problem.file), FromUtf8(line + problem.reason)}};
}

} // namespace TolvexPath
