#pragma once

#include "ChangeHistory.h"
#include "FolderWatches.h"
#include "ShortageWarning.h"
#include "foundation/observers/FileFolderChangedEvent.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <unordered_set>

namespace Tolvex {

/// The live observers of one storage system, by folder, and what is known of their folders. Owned by their factory and
/// by each of them together, so that an observer may outlive both its factory and its storage system. Safe from any
/// thread; folders are looked at without a lock.
class ObserverRegistry final : public boost::intrusive_ref_counter<ObserverRegistry>, private IWatchListener {
public:
    ObserverRegistry(const StorageSystemReference& storage, ObservationOptions options);
    ObserverRegistry(const ObserverRegistry&) = delete;
    ObserverRegistry& operator=(const ObserverRegistry&) = delete;
    ~ObserverRegistry() override;

    [[nodiscard]] bool IsStorageGone() const noexcept { return storage.expired(); }

    [[nodiscard]] boost::intrusive_ptr<ObservedFolder> Add(const CanonicalAbsoluteIRI& location,
                                                           FileFolderObserver& observer);
    void Remove(ObservedFolder& folder, FileFolderObserver& observer) noexcept;
    void SetLevel(const CanonicalAbsoluteIRI& location, ObservationLevel level);

    /// Brings what is known of the folder up to now; whether the observer, one of the folder's, has changed then.
    [[nodiscard]] bool FindChanged(ObservedFolder& folder, const FileFolderObserver& observer) noexcept;
    void LookAt(std::span<const CanonicalAbsoluteIRI> locations);
    /// Brings what is known of all folders up to now.
    [[nodiscard]] ChangeReport GetChangesSince(ChangeToken token);
    void MarkChanged(const AbsoluteIRI& location, FrozenInclusion frozen);
    [[nodiscard]] std::optional<WaitHandle> GetWaitHandle();

    [[nodiscard]] RemotePathPolicy GetRemotePathPolicy() const noexcept { return policy.load(); }
    void SetRemotePathPolicy(RemotePathPolicy newPolicy) noexcept { policy.store(newPolicy); }
    [[nodiscard]] ShortageWarning& GetShortageWarning() noexcept { return shortageWarning; }

private:
    using Lock = std::unique_lock<std::mutex>;
    class LookRound;

    static const AbsoluteIRI& GetLocation(const ObservedFolder* folder) noexcept { return folder->location; }
    static const AbsoluteIRI& GetLocation(const AbsoluteIRI& location) noexcept { return location; }
    struct HashByLocation {
        using is_transparent = void;
        std::size_t operator()(const auto& key) const { return GetLocation(key).hashValue(); }
    };
    struct EqualByLocation {
        using is_transparent = void;
        bool operator()(const auto& a, const auto& b) const { return GetLocation(a) == GetLocation(b); }
    };

    [[nodiscard]] ObservedFolder* Find(const AbsoluteIRI& location) const;

    void OnChanged(ObservedFolder& folder) noexcept override;
    void OnSuspect(ObservedFolder& folder) noexcept override;
    void OnMountChanged(std::string_view path) override;

    void Drain();
    void Settle(ObservedFolder& folder);
    void SetRule(ObservedFolder& folder, ObservedFolder::LookRule rule) noexcept;
    void Watch(ObservedFolder& folder) noexcept;
    void Forget(ObservedFolder& folder) noexcept;
    void FindKind(ObservedFolder& folder);
    void FollowWay(ObservedFolder& folder);
    void Arm(ObservedFolder& folder);
    void MarkChanged(ObservedFolder& folder, FileFolderObserver& observer) noexcept;
    void MarkAllChanged(ObservedFolder& folder, FrozenInclusion frozen) noexcept;

    const std::weak_ptr<const StorageSystem> storage;
    const ObservationOptions options;
    std::atomic<RemotePathPolicy> policy = RemotePathPolicy::timecheckDir;
    ShortageWarning shortageWarning;

    std::mutex mutex; // guards all below, the folders, and the lives of the observers in them
    std::unordered_set<ObservedFolder*, HashByLocation, EqualByLocation> folders; // while they have observers
    std::unique_ptr<IFolderWatches> watches; // null for storage that the kernel does not know
    FolderList<LookListTag> suspects;
    FolderList<LookListTag> timeChecks;
    ChangeHistory history;
    std::uint64_t lastNumber = 0; // of an observer
    bool isShort = false;         // no watch was left in this round of looks
    bool isShortTold = false;     // since somebody asked for all changes
};

} // namespace Tolvex
