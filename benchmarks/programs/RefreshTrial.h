#pragma once

#include "path_interfaces/IFolderMonitor.h"
#include "programs/ManagerSession.h"

namespace KxBenchmarks {

/// What it costs a host to learn that nothing on its path has changed.
class RefreshTrial {
public:
    /// Looks once, so that what is watched is watched from then on. Throws std::runtime_error when an entry that was
    /// set is not at `level`: something else would be measured.
    RefreshTrial(const ManagerSession& session, PathManagement::FolderMonitoringLevel level);

    /// In milliseconds. Throws std::runtime_error when the refresh made a new path.
    [[nodiscard]] double Measure();

private:
    PathManagement::IMainSearchPathManager& manager;
};

} // namespace KxBenchmarks
