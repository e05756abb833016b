#include "current_folder/NoCurrentFolderPathManager.h"

namespace PathManagement {

ICurrentFolderPathManager::Component NoCurrentFolderPathManager::GetCurrentFolderComponent() const {
    return std::nullopt;
}

std::shared_ptr<const IPath> NoCurrentFolderPathManager::GetCurrentFolderPath() const {
    return pathFactory.CreatePath(std::make_shared<const PathEntryVector>(), nullptr);
}

std::shared_ptr<const IPath> NoCurrentFolderPathManager::GetCurrentFolderPath(const IPath& /*mainPath*/) const {
    return GetCurrentFolderPath();
}

void NoCurrentFolderPathManager::ConnectToCurrentFolderChanged(CurrentFolderChangedCallback /*callback*/) {}

void NoCurrentFolderPathManager::UpdateCurrentFolderComponent() {}

std::pair<PathEntryVector, PathEntryVector> NoCurrentFolderPathManager::RequestRefresh(RefreshType /*type*/) {
    return {};
}

std::shared_ptr<CurrentFolderMemento> NoCurrentFolderPathManager::CreateMemento() const {
    return nullptr;
}

void NoCurrentFolderPathManager::RestoreMemento(const CurrentFolderMemento& /*memento*/) {}

} // namespace PathManagement
