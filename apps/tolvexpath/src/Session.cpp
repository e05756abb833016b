#include "Session.h"

#include "Messages.h"
#include "ProgressLine.h"

#include "foundation/environment/StorageAccess.h"
#include "foundation/observers/IFileFolderObserverFactory.h"
#include "search_path/Accessors.h"
#include "search_path/MainSearchPathManagerFactory.h"

#include <fmt/format.h>

namespace TolvexPath {

using Tolvex::CanonicalAbsoluteIRI;

Session::Session(PathManagement::CurrentFolderPolicy policy)
    : events(Tolvex::createEventMgr()), manager(PathManagement::CreateMainSearchPathManager(events, components)) {
    manager->SetCurrentFolderPolicy(policy);
}

Tolvex::Notification Session::SetPath(std::span<const Tolvex::AbsoluteIRI> locations) {
    const PathManagement::IPathEntryFactory& factory = PathManagement::GetPathEntryFactory();
    std::vector<CanonicalAbsoluteIRI> folders;
    folders.reserve(locations.size());
    for (const Tolvex::AbsoluteIRI& location : locations)
        folders.emplace_back(location, u"");
    Tolvex::Notification problems;
    const ProgressLine progress(
        [&factory] { return fmt::format("{} folders read", factory.GetCounters().foldersListed); });
    manager->SetPathEntries(PathManagement::CanonicalIRIRange(folders), problems);
    return problems;
}

void Session::Refresh(PathManagement::RefreshType type) {
    manager->RefreshPath(type);
    auto& observers = Tolvex::GetFileFolderObserverFactory(TolvexStorageSystem::GetStorageSystemReference());
    if (const std::string warning = observers.takeChangeHandleWarning(); !warning.empty())
        PrintMessage(warning);
}

} // namespace TolvexPath
