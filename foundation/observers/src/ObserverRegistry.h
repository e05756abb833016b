#pragma once

#include "foundation/observers/IFileFolderObserverFactory.h"

#include <mutex>
#include <unordered_map>

namespace Tolvex {

class FileFolderObserver;

/// The live observers of one storage system, by folder. Owned by their factory and by each of them together, so that an
/// observer may outlive both its factory and its storage system. Safe from any thread.
class ObserverRegistry {
public:
    explicit ObserverRegistry(const StorageSystemReference& storage) : storage(storage) {}

    /// Null when the storage system is gone.
    [[nodiscard]] StorageSystemReference GetStorage() const noexcept { return storage.lock(); }

    [[nodiscard]] bool IsStorageGone() const noexcept { return storage.expired(); }

    void Add(const CanonicalAbsoluteIRI& folder, FileFolderObserver& observer);
    void Remove(const CanonicalAbsoluteIRI& folder, const FileFolderObserver& observer) noexcept;
    void SetLevel(const CanonicalAbsoluteIRI& folder, ObservationLevel level);

private:
    std::weak_ptr<const StorageSystem> storage;
    std::mutex mutex; // guards `observers`, and keeps each of them alive while it is in there
    std::unordered_multimap<CanonicalAbsoluteIRI, FileFolderObserver*, IRIHash> observers;
};

} // namespace Tolvex
