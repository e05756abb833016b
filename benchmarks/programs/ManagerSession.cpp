#include "programs/ManagerSession.h"

#include "foundation/environment/WorkingFolder.h"
#include "search_path/Accessors.h"

#include <algorithm>
#include <stdexcept>

namespace KxBenchmarks {

using namespace PathManagement;

ManagerSession::ManagerSession()
    : events(Tolvex::createEventMgr()), manager(CreateMainSearchPathManager(events, packages)) {}

void ManagerSession::SetFolders(std::span<const Tolvex::AbsoluteIRI> folders) {
    Tolvex::Notification problems;
    PathEntryVector entries = GetPathEntryFactory().CreatePathEntries(folders, manager->GetFolderMonitor(), problems);
    manager->SetPathEntries(std::move(entries), problems);
    if (manager->GetPathIRIs()->size() != folders.size())
        throw std::runtime_error("a folder cannot stand on the path");
}

void ManagerSession::EnterFolder(const Tolvex::AbsoluteIRI& folder) {
    Tolvex::ChangeCurrentWorkingFolder(folder, *events);
}

std::shared_ptr<const IPath> ManagerSession::GetStoredPath() const {
    return manager->CreateMemento()->storedPath;
}

} // namespace KxBenchmarks
