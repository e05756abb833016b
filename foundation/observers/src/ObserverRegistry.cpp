#include "ObserverRegistry.h"

#include "FileFolderObserver.h"
#include "LookRound.h"

#include <algorithm>

namespace Tolvex {
namespace {

constexpr std::string_view diskScheme = "file";

bool IsAtOrBelow(const AbsoluteIRI& location, const AbsoluteIRI& folder) {
    return location == folder || folder.isAncestorOf(location);
}

ObservationLevel GetLevel(const ObservedFolder& folder) {
    auto level = ObservationLevel::none;
    for (const auto& observer : folder.observers)
        level = std::max(level, observer.GetLevel());
    return level;
}

} // namespace

ObserverRegistry::ObserverRegistry(const StorageSystemReference& storage, ObservationOptions options)
    : storage(storage), options(std::move(options)) {
    if (storage->getScheme() == diskScheme)
        watches = CreateDiskWatches(*this, this->options);
}

ObserverRegistry::~ObserverRegistry() = default;

boost::intrusive_ptr<ObservedFolder> ObserverRegistry::Add(const CanonicalAbsoluteIRI& location,
                                                           FileFolderObserver& observer) {
    const Lock lock(mutex);
    boost::intrusive_ptr<ObservedFolder> folder(Find(location));
    const bool isNew = !folder;
    if (isNew)
        folder.reset(new ObservedFolder(location));
    folder->wayType = ObservedFolder::WayType::unknown;
    if (folder->isWatched)
        Drain(); // what is in the queue happened before and is told to the others only
    if (observer.GetLevel() != ObservationLevel::none)
        FindKind(*folder);
    if (isNew)
        folders.insert(folder.get()); // the last that may fail
    folder->observers.push_front(observer);
    observer.SetNumber(++lastNumber);
    if (observer.GetLevel() != ObservationLevel::none)
        Settle(*folder);
    return folder;
}

void ObserverRegistry::Remove(ObservedFolder& folder, FileFolderObserver& observer) noexcept {
    const Lock lock(mutex);
    const auto level = GetLevel(folder);
    folder.observers.erase(folder.observers.iterator_to(observer));
    if (std::ranges::none_of(folder.observers, &FileFolderObserver::IsChanged))
        history.Remove(folder);
    if (folder.observers.empty())
        Forget(folder);
    else if (GetLevel(folder) != level)
        Settle(folder);
}

void ObserverRegistry::SetLevel(const CanonicalAbsoluteIRI& location, ObservationLevel level) {
    const Lock lock(mutex);
    auto* const folder = Find(location);
    if (!folder || std::ranges::all_of(folder->observers, [&](const auto& each) { return each.GetLevel() == level; }))
        return;
    if (folder->isWatched)
        Drain();
    for (auto& observer : folder->observers)
        observer.SetLevel(level);
    Settle(*folder);
}

bool ObserverRegistry::FindChanged(ObservedFolder& folder, const FileFolderObserver& observer) noexcept {
    try {
        Lock lock(mutex);
        Drain();
        if (observer.IsChanged() || folder.rule == ObservedFolder::LookRule::never)
            return observer.IsChanged();
        LookRound round(*this, lock);
        round.Include(folder);
        round.Run();
        return observer.IsChanged();
    } catch (const std::exception&) { // no memory for the look
        return true;
    }
}

void ObserverRegistry::LookAt(std::span<const CanonicalAbsoluteIRI> locations) {
    Lock lock(mutex);
    Drain();
    LookRound round(*this, lock);
    for (const auto& location : locations) {
        if (auto* const folder = Find(location)) {
            FindKind(*folder);
            round.Include(*folder, FrozenInclusion::included);
        }
    }
    round.Run();
}

ChangeReport ObserverRegistry::GetChangesSince(ChangeToken token) {
    Lock lock(mutex);
    Drain();
    isShortTold = false;
    LookRound round(*this, lock);
    std::vector<ObservedFolder*> toArm; // which may take them, and others, to the other list
    for (auto& folder : suspects)
        toArm.push_back(&folder);
    for (auto& folder : timeChecks) {
        if (folder.lacksWatch)
            toArm.push_back(&folder); // a watch may have become free
        else
            round.Include(folder);
    }
    for (auto* const folder : toArm) {
        if (folder->lacksWatch && !isShort)
            Watch(*folder);
        round.Include(*folder);
    }
    round.Run();
    return {{history.GetPosition()}, history.GetChangedAfter(token.position), false, !timeChecks.empty()};
}

void ObserverRegistry::MarkChanged(const AbsoluteIRI& location, FrozenInclusion frozen) {
    const Lock lock(mutex);
    if (auto* const folder = Find(location))
        MarkAllChanged(*folder, frozen);
}

std::optional<WaitHandle> ObserverRegistry::GetWaitHandle() {
    const Lock lock(mutex);
    return watches ? watches->GetWaitHandle() : std::nullopt;
}

ObservedFolder* ObserverRegistry::Find(const AbsoluteIRI& location) const {
    const auto found = folders.find(location);
    return found == folders.end() ? nullptr : *found;
}

void ObserverRegistry::OnChanged(ObservedFolder& folder) noexcept {
    for (auto& observer : folder.observers)
        if (observer.IsCurious())
            MarkChanged(folder, observer);
}

void ObserverRegistry::OnSuspect(ObservedFolder& folder) noexcept {
    Watch(folder);
}

void ObserverRegistry::OnMountChanged(std::string_view path) {
    const AbsoluteIRI place(diskScheme, FromUtf8(path));
    for (auto* const folder : folders) {
        if (!IsAtOrBelow(folder->location, place))
            continue;
        folder->kind.reset();
        folder->wayType = ObservedFolder::WayType::unknown;
        Settle(*folder);
    }
}

void ObserverRegistry::Drain() {
    if (watches)
        watches->Drain();
}

/// Brings the way in which the folder is observed in line with what its observers want.
void ObserverRegistry::Settle(ObservedFolder& folder) {
    const auto level = GetLevel(folder);
    if (level != ObservationLevel::none)
        FindKind(folder);
    if (level == ObservationLevel::notification && watches && folder.kind == StorageKind::notifying)
        return Watch(folder);
    if (watches)
        watches->Release(folder);
    SetRule(folder,
            level == ObservationLevel::none ? ObservedFolder::LookRule::never : ObservedFolder::LookRule::always);
}

/// The folder's watch is armed, or found to be armed, before the next look at it.
void ObserverRegistry::Watch(ObservedFolder& folder) noexcept {
    ++folder.suspicions;
    SetRule(folder, ObservedFolder::LookRule::once);
}

void ObserverRegistry::SetRule(ObservedFolder& folder, ObservedFolder::LookRule rule) noexcept {
    folder.rule = rule;
    folder.lacksWatch = false;
    folder.isWatched = folder.isWatched && rule != ObservedFolder::LookRule::always;
    folder.FolderHook<LookListTag>::unlink();
    if (rule == ObservedFolder::LookRule::once)
        suspects.push_back(folder);
    if (rule == ObservedFolder::LookRule::always)
        timeChecks.push_back(folder);
}

void ObserverRegistry::Forget(ObservedFolder& folder) noexcept {
    if (watches)
        watches->Release(folder);
    SetRule(folder, ObservedFolder::LookRule::never);
    folders.erase(folders.find(&folder));
}

void ObserverRegistry::FindKind(ObservedFolder& folder) {
    if (folder.kind)
        return;
    const auto isHere = [&](const AbsoluteIRI& remote) { return IsAtOrBelow(folder.location, remote); };
    if (watches)
        folder.kind = watches->GetKind(folder.location);
    else
        folder.kind = std::ranges::any_of(options.remoteFolders, isHere) ? StorageKind::remote : StorageKind::silent;
}

/// Before a look at a folder that no watch tells of: its name may lie here and its content far away. A link may be
/// changed at any time; another name that becomes one is another folder, whose observers are made anew.
void ObserverRegistry::FollowWay(ObservedFolder& folder) {
    if (!watches || folder.isWatched || folder.wayType == ObservedFolder::WayType::direct)
        return;
    const auto way = watches->Follow(folder.location);
    if (!way)
        return;
    folder.wayType = way->hasLinks ? ObservedFolder::WayType::linked : ObservedFolder::WayType::direct;
    folder.kind = way->kind;
}

void ObserverRegistry::Arm(ObservedFolder& folder) {
    using Result = IFolderWatches::ArmResult;
    const auto result = isShort && !folder.isWatched ? Result::noWatchLeft : watches->Arm(folder);
    folder.isWatched = result == Result::settled;
    if (result == Result::unsuitable || result == Result::noWatchLeft)
        SetRule(folder, ObservedFolder::LookRule::always);
    folder.lacksWatch = result == Result::noWatchLeft;
    isShort = isShort || folder.lacksWatch;
}

void ObserverRegistry::MarkChanged(ObservedFolder& folder, FileFolderObserver& observer) noexcept {
    observer.SetChanged();
    history.Add(folder);
}

void ObserverRegistry::MarkAllChanged(ObservedFolder& folder, FrozenInclusion frozen) noexcept {
    for (auto& observer : folder.observers)
        if (frozen == FrozenInclusion::included || observer.GetLevel() != ObservationLevel::none)
            MarkChanged(folder, observer);
}

} // namespace Tolvex
