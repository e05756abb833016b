#include "LookRound.h"

#include "FileFolderObserver.h"

#include <algorithm>
#include <span>
#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>
#include <utility>

namespace Tolvex {
namespace {

constexpr std::size_t looksOfOneTask = 256;

} // namespace

ObserverRegistry::LookRound::LookRound(ObserverRegistry& registry, Lock& lock)
    : registry(registry), lock(lock), lastNumber(registry.lastNumber) {
    registry.isShort = false;
}

void ObserverRegistry::LookRound::Include(ObservedFolder& folder, FrozenInclusion frozen) {
    Look look{boost::intrusive_ptr<ObservedFolder>(&folder), folder.suspicions, frozen};
    if (folder.rule == ObservedFolder::LookRule::once)
        registry.Arm(folder);
    registry.FollowWay(folder);
    if (IsToBeLookedAt(folder, frozen) &&
        std::ranges::any_of(folder.observers, [&look](const auto& observer) { return look.Concerns(observer); }))
        looks.push_back(std::move(look));
}

bool ObserverRegistry::LookRound::IsToBeLookedAt(ObservedFolder& folder, FrozenInclusion frozen) const {
    if (folder.rule == ObservedFolder::LookRule::never && frozen == FrozenInclusion::excluded)
        return false;
    if (folder.kind != StorageKind::remote)
        return true;
    const auto remotePolicy = registry.GetRemotePathPolicy();
    if (remotePolicy == RemotePathPolicy::reload)
        registry.MarkAllChanged(folder, frozen);
    return remotePolicy == RemotePathPolicy::timecheckDir;
}

bool ObserverRegistry::LookRound::Look::Concerns(const FileFolderObserver& observer) const noexcept {
    return frozen == FrozenInclusion::included ? !observer.IsChanged() : observer.IsCurious();
}

void ObserverRegistry::LookRound::Run() {
    const auto warning = DescribeShortage();
    if (looks.empty() && warning.empty())
        return;
    lock.unlock();
    if (!warning.empty())
        registry.shortageWarning.Raise(warning);
    const auto marks = TakeMarks();
    lock.lock();
    for (std::size_t i = 0; i < looks.size(); ++i)
        Apply(looks[i], marks[i]);
}

std::string ObserverRegistry::LookRound::DescribeShortage() {
    if (!registry.isShort || std::exchange(registry.isShortTold, true))
        return {};
    return registry.watches->DescribeShortage();
}

std::vector<ChangeMark> ObserverRegistry::LookRound::TakeMarks() const {
    std::vector<ChangeMark> marks(looks.size());
    const auto keptStorage = registry.storage.lock();
    if (!keptStorage)
        return marks;
    std::vector<const AbsoluteIRI*> locations;
    locations.reserve(looks.size());
    for (const auto& look : looks)
        locations.push_back(&look.folder->location);
    using Stretch = tbb::blocked_range<std::size_t>;
    const auto takeStretch = [&](const Stretch& stretch) {
        keptStorage->takeChangeMarks(std::span(locations).subspan(stretch.begin(), stretch.size()),
                                     std::span(marks).subspan(stretch.begin(), stretch.size()));
    };
    // A caller that waits here must not be given a task of its own caller's, which may want what that one has locked.
    tbb::this_task_arena::isolate(
        [&] { tbb::parallel_for(Stretch(0, locations.size(), looksOfOneTask), takeStretch); });
    return marks;
}

void ObserverRegistry::LookRound::Apply(const Look& look, const ChangeMark& now) const {
    auto& folder = *look.folder;
    for (auto& observer : folder.observers) {
        if (observer.GetNumber() > lastNumber || !look.Concerns(observer))
            continue;
        if (observer.Refutes(now))
            registry.MarkChanged(folder, observer);
        else
            observer.Adopt(now);
    }
    const bool isSettled = folder.isWatched && folder.suspicions == look.suspicions;
    if (isSettled && folder.rule == ObservedFolder::LookRule::once)
        registry.SetRule(folder, ObservedFolder::LookRule::never);
}

} // namespace Tolvex
