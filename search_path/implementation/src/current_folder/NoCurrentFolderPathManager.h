#pragma once

#include "path_interfaces/ICurrentFolderPathManager.h"
#include "path_interfaces/IPathFactory.h"

namespace PathManagement {

/// Stands in where there is no current folder: every answer is empty, and nothing ever changes.
class NoCurrentFolderPathManager final : public ICurrentFolderPathManager {
public:
    /// `pathFactory` outlives this object.
    explicit NoCurrentFolderPathManager(const IPathFactory& pathFactory) noexcept : pathFactory(pathFactory) {}

    [[nodiscard]] Component GetCurrentFolderComponent() const override;
    [[nodiscard]] std::shared_ptr<const IPath> GetCurrentFolderPath() const override;
    [[nodiscard]] std::shared_ptr<const IPath> GetCurrentFolderPath(const IPath& mainPath) const override;
    void ConnectToCurrentFolderChanged(CurrentFolderChangedCallback callback) override;
    void UpdateCurrentFolderComponent() override;
    std::pair<PathEntryVector, PathEntryVector> RequestRefresh(RefreshType type) override;
    [[nodiscard]] std::shared_ptr<CurrentFolderMemento> CreateMemento() const override;
    void RestoreMemento(const CurrentFolderMemento& memento) override;

private:
    const IPathFactory& pathFactory;
};

} // namespace PathManagement
