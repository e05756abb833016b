#include "programs/RefreshTrial.h"

#include "programs/Measurements.h"
#include "search_path/Accessors.h"

#include <stdexcept>

namespace KxBenchmarks {

using namespace PathManagement;

RefreshTrial::RefreshTrial(const ManagerSession& session, FolderMonitoringLevel level) : manager(session.GetManager()) {
    manager.RefreshPath(RefreshType::knownChanges);
    const bool isAnyElsewhere = session.GetStoredPath()->ForEachEntry(SearchScope::All(), [level](const auto& entry) {
        return GetPathEntryFactory().GetEntryState(*entry).level != level;
    });
    if (isAnyElsewhere)
        throw std::runtime_error("a folder is watched more or less closely than is to be measured");
}

double RefreshTrial::Measure() {
    const auto before = manager.GetPath();
    const double taken = MeasureMilliseconds([this] { manager.RefreshPath(RefreshType::knownChanges); });
    if (manager.GetPath() != before)
        throw std::runtime_error("a folder has changed meanwhile");
    return taken;
}

} // namespace KxBenchmarks
