// Programs built before a change call these operations by their places in the tables of virtual operations. Whoever
// moves one breaks them, whoever adds one at the end does not; either way the library's ABI number is to be thought of.

#include "foundation/components/IModularPackageRegistry.h"
#include "foundation/components/IPackageRegistrar.h"
#include "foundation/observers/IFileFolderObserverFactory.h"
#include "foundation/storage/StorageSystem.h"
#include "path_interfaces/ICurrentFolderPathManager.h"
#include "path_interfaces/IMainSearchPathManager.h"
#include "path_interfaces/IPathDerivation.h"
#include "path_interfaces/IPathEntryFactory.h"
#include "path_interfaces/IPathFactory.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>

namespace PathManagement {
namespace {

struct Operation {
    std::string name;
    std::size_t place; // in the table of virtual operations
};

/// The common C++ ABI keeps a pointer to a virtual operation as one more than its distance in bytes from the start of
/// the table, followed by the adjustment of `this`.
template <class Member>
std::size_t GetPlace(Member member) {
    std::array<std::size_t, 2> words{};
    static_assert(sizeof member == sizeof words);
    std::memcpy(words.data(), &member, sizeof member);
    EXPECT_EQ(words[0] % sizeof(void*), 1U) << "not a virtual operation";
    EXPECT_EQ(words[1], 0U);
    return (words[0] - 1) / sizeof(void*);
}

template <class Member>
Operation At(std::string name, Member member) {
    return {std::move(name), GetPlace(member)};
}

/// The operations of one interface in the order of their slots, from slot 1 on; the destructor is slot 0.
struct Interface {
    std::string name;
    std::vector<Operation> operations;
};

using Tolvex::AbsoluteIRI;
using Tolvex::CanonicalAbsoluteIRI;
using EntryHandle = std::shared_ptr<const IPathEntry>;
using PathHandle = std::shared_ptr<const IPath>;

Interface GetPathEntryInterface() {
    using I = IPathEntry;
    return {"IPathEntry",
            {At("GetPathEntryType", &I::GetPathEntryType), At("GetPathItems", &I::GetPathItems),
             At("GetIRI", &I::GetIRI), At("GetDescriptor", &I::GetDescriptor),
             At("GetPrivateEntry", &I::GetPrivateEntry), At("GetResourcesEntry", &I::GetResourcesEntry),
             At("GetPackageEntries", &I::GetPackageEntries), At("GetMethodEntries", &I::GetMethodEntries),
             At("GetUDDClassEntries", &I::GetUDDClassEntries), At("FindFirst", &I::FindFirst),
             At("FindAll", &I::FindAll), At("ForEachEntry", &I::ForEachEntry),
             At("ConcurrentForEachEntry", &I::ConcurrentForEachEntry),
             At("CreateFilenameMatcher", &I::CreateFilenameMatcher), At("IsOutOfDate", &I::IsOutOfDate),
             At("GetUpdatedPathEntry", &I::GetUpdatedPathEntry), At("GetPathComparator", &I::GetPathComparator)}};
}

Interface GetPathInterface() {
    using I = IPath;
    using ByPlace = EntryHandle (I::*)(const CanonicalAbsoluteIRI&) const;
    using BySpelling = EntryHandle (I::*)(const AbsoluteIRI&, FilenameMatchingPolicy) const;
    return {"IPath",
            {At("GetMainEntries", &I::GetMainEntries), At("GetMethodEntries", &I::GetMethodEntries),
             At("GetMethodEntriesByName", &I::GetMethodEntriesByName),
             At("GetPartiallyMatchingEntries", &I::GetPartiallyMatchingEntries),
             At("GetMainEntryForEntry", &I::GetMainEntryForEntry),
             At("GetParentEntryForEntry", &I::GetParentEntryForEntry),
             At("GetPathEntryFromAbsoluteIRI by place", static_cast<ByPlace>(&I::GetPathEntryFromAbsoluteIRI)),
             At("GetPathEntryFromAbsoluteIRI by spelling", static_cast<BySpelling>(&I::GetPathEntryFromAbsoluteIRI)),
             At("FindFirstInScope", &I::FindFirstInScope), At("FindAllInScope", &I::FindAllInScope),
             At("ForEachEntry", &I::ForEachEntry), At("ConcurrentForEachEntry", &I::ConcurrentForEachEntry),
             At("FirstEntryIsBeforeSecondOnPath", &I::FirstEntryIsBeforeSecondOnPath),
             At("IsEntryOnPath", &I::IsEntryOnPath)}};
}

Interface GetMainSearchPathManagerInterface() {
    using I = IMainSearchPathManager;
    using ByEntries = void (I::*)(std::vector<EntryHandle>, Tolvex::Notification&);
    using ByLocations = void (I::*)(const CanonicalIRIRange&, Tolvex::Notification&);
    return {"IMainSearchPathManager",
            {At("GetMonitoredPath", &I::GetMonitoredPath), At("GetSecondaryPath", &I::GetSecondaryPath),
             At("RefreshPath", &I::RefreshPath),
             At("SetPathEntries by entries", static_cast<ByEntries>(&I::SetPathEntries)),
             At("SetPathEntries by locations", static_cast<ByLocations>(&I::SetPathEntries)),
             At("SetPath", &I::SetPath), At("GetPath", &I::GetPath), At("GetFolderMonitor", &I::GetFolderMonitor),
             At("PushMutabilityPolicy", &I::PushMutabilityPolicy), At("SetMutabilityPolicy", &I::SetMutabilityPolicy),
             At("GetCurrentFolderComponent", &I::GetCurrentFolderComponent),
             At("GetPathComponents", &I::GetPathComponents), At("SetCurrentFolderPolicy", &I::SetCurrentFolderPolicy),
             At("GetPathIRIs", &I::GetPathIRIs), At("CreateMemento", &I::CreateMemento),
             At("RebuildPath", &I::RebuildPath)}};
}

Interface GetPathEntryFactoryInterface() {
    using I = IPathEntryFactory;
    using ByPlace = EntryHandle (I::*)(const CanonicalAbsoluteIRI&, const IFolderMonitor&) const;
    using BySpelling = EntryHandle (I::*)(const AbsoluteIRI&, const IFolderMonitor&) const;
    return {"IPathEntryFactory",
            {At("CreatePathEntries", &I::CreatePathEntries), At("GetLiveEntry", &I::GetLiveEntry),
             At("GetEntryState", &I::GetEntryState), At("GetCounters", &I::GetCounters),
             At("CreatePathEntry by place", static_cast<ByPlace>(&I::CreatePathEntry)),
             At("CreatePathEntry by spelling", static_cast<BySpelling>(&I::CreatePathEntry)),
             At("GetChangesSince", &I::GetChangesSince), At("LoadToolboxCache", &I::LoadToolboxCache),
             At("WriteToolboxCache", &I::WriteToolboxCache), At("DropToolboxCache", &I::DropToolboxCache),
             At("UpdateObservation", &I::UpdateObservation), At("GetInstallationFolder", &I::GetInstallationFolder)}};
}

Interface GetFolderMonitorInterface() {
    using I = IFolderMonitor;
    return {"IFolderMonitor",
            {At("GetMonitoringLevel", &I::GetMonitoringLevel),
             At("GetParentMonitoringLevel", &I::GetParentMonitoringLevel),
             At("StartMonitoringPackageFolder", &I::StartMonitoringPackageFolder),
             At("StopMonitoringPackageFolder", &I::StopMonitoringPackageFolder), At("SetPath", &I::SetPath)}};
}

Interface GetCurrentFolderPathManagerInterface() {
    using I = ICurrentFolderPathManager;
    using Alone = PathHandle (I::*)() const;
    using InFrontOf = PathHandle (I::*)(const IPath&) const;
    return {"ICurrentFolderPathManager",
            {At("GetCurrentFolderComponent", &I::GetCurrentFolderComponent),
             At("GetCurrentFolderPath", static_cast<Alone>(&I::GetCurrentFolderPath)),
             At("GetCurrentFolderPath in front of a path", static_cast<InFrontOf>(&I::GetCurrentFolderPath)),
             At("ConnectToCurrentFolderChanged", &I::ConnectToCurrentFolderChanged),
             At("UpdateCurrentFolderComponent", &I::UpdateCurrentFolderComponent),
             At("RequestRefresh", &I::RequestRefresh), At("CreateMemento", &I::CreateMemento),
             At("RestoreMemento", &I::RestoreMemento)}};
}

Interface GetObserverFactoryInterface() {
    using I = Tolvex::IFileFolderObserverFactory;
    return {"IFileFolderObserverFactory",
            {At("createObserver", &I::createObserver), At("setObservationLevel", &I::setObservationLevel),
             At("lookAt", &I::lookAt), At("getChangesSince", &I::getChangesSince),
             At("getRemotePathPolicy", &I::getRemotePathPolicy), At("setRemotePathPolicy", &I::setRemotePathPolicy),
             At("getChangeHandleWarning", &I::getChangeHandleWarning),
             At("setChangeHandleWarning", &I::setChangeHandleWarning),
             At("takeChangeHandleWarning", &I::takeChangeHandleWarning), At("getWaitHandle", &I::getWaitHandle)}};
}

Interface GetStorageSystemInterface() {
    using I = Tolvex::StorageSystem;
    return {"StorageSystem",
            {At("getScheme", &I::getScheme), At("openFolder", &I::openFolder), At("takeChangeMark", &I::takeChangeMark),
             At("takeChangeMarks", &I::takeChangeMarks), At("canonicalise", &I::canonicalise)}};
}

std::vector<Interface> GetInterfaces() {
    using Tolvex::Folder;
    using Tolvex::IFileFolderObserver;
    using TolvexComponents::IComponent;
    using TolvexComponents::IModularPackageRegistry;
    using TolvexPackages::IPackageRegistrar;
    using TolvexPackages::IPackageRegistry;
    return {
        GetPathEntryInterface(),
        GetPathInterface(),
        GetMainSearchPathManagerInterface(),
        GetPathEntryFactoryInterface(),
        GetFolderMonitorInterface(),
        GetCurrentFolderPathManagerInterface(),
        GetObserverFactoryInterface(),
        GetStorageSystemInterface(),
        {"IFileFolderObserver",
         {At("hasChanged", &IFileFolderObserver::hasChanged),
          At("observesChildFoldersToo", &IFileFolderObserver::observesChildFoldersToo)}},
        {"Folder",
         {At("getCanonicalLocation", &Folder::getCanonicalLocation),
          At("getPathComparator", &Folder::getPathComparator), At("getChangeMark", &Folder::getChangeMark),
          At("list", &Folder::list), At("openChild", &Folder::openChild)}},
        {"IPathFactory", {At("CreatePath", &IPathFactory::CreatePath)}},
        {"IPathDerivation", {At("DerivePath", &IPathDerivation::DerivePath)}},
        {"ICurrentFolderPathManagerFactory", {At("Create", &ICurrentFolderPathManagerFactory::Create)}},
        {"IModularPackageRegistry",
         {At("FindComponentOfFolder", &IModularPackageRegistry::FindComponentOfFolder),
          At("GetComponent", &IModularPackageRegistry::GetComponent)}},
        {"IComponent",
         {At("GetIdentifier", &IComponent::GetIdentifier), At("GetRootFolder", &IComponent::GetRootFolder),
          At("GetPath", &IComponent::GetPath), At("GetPathEntry", &IComponent::GetPathEntry)}},
        {"IPackageRegistrar",
         {At("GetRegistry", &IPackageRegistrar::GetRegistry),
          At("FindPackageOfFolder", &IPackageRegistrar::FindPackageOfFolder),
          At("FindPackage", &IPackageRegistrar::FindPackage),
          At("ReplaceRegistry", &IPackageRegistrar::ReplaceRegistry)}},
        {"IPackageRegistry",
         {At("GetPackages", &IPackageRegistry::GetPackages), At("FindPackage", &IPackageRegistry::FindPackage),
          At("FindPackageOfFolder", &IPackageRegistry::FindPackageOfFolder),
          At("IsFolderOfUninstalledPackage", &IPackageRegistry::IsFolderOfUninstalledPackage)}},
    };
}

TEST(SlotOrderTest, OperationsKeepTheirPlaces) {
    for (const Interface& interface : GetInterfaces()) {
        std::size_t slot = 1;
        for (const Operation& operation : interface.operations) {
            // The destructor has two places: one leaves the memory, one gives it back.
            EXPECT_EQ(operation.place, slot + 1) << interface.name << "::" << operation.name;
            ++slot;
        }
    }
}

} // namespace
} // namespace PathManagement
