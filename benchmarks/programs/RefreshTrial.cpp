#include "programs/RefreshTrial.h"

#include "programs/Measurements.h"

#include <algorithm>
#include <stdexcept>

namespace KxBenchmarks {

using namespace PathManagement;

RefreshTrial::RefreshTrial(const IPathEntryFactory& factory, const IPath& path)
    : factory(factory), path(path), seen(factory.GetChangesSince({}).now) {}

void RefreshTrial::DemandThatNobodyIsAsked() const {
    if (factory.GetChangesSince(seen).askEachObserver)
        throw std::runtime_error("the folders are not watched");
}

double RefreshTrial::Measure() {
    bool isUnchanged = false;
    const double taken = MeasureMilliseconds([&] { isUnchanged = IsUnchanged(); });
    if (!isUnchanged)
        throw std::runtime_error("a folder has changed meanwhile");
    return taken;
}

/// What a manager asks when it is told to refresh what is known to be out of date.
bool RefreshTrial::IsUnchanged() {
    const Tolvex::ChangeReport report = factory.GetChangesSince(seen);
    seen = report.now;
    if (!report.askEachObserver)
        return report.changed.empty();
    return std::ranges::none_of(*path.GetMainEntries(), [](const auto& entry) { return entry->IsOutOfDate(); });
}

} // namespace KxBenchmarks
