#include "FileFolderObserver.h"

#include <atomic>

namespace Tolvex {
namespace {

class FileFolderObserverFactory final : public IFileFolderObserverFactory {
public:
    explicit FileFolderObserverFactory(const StorageSystemReference& storage)
        : registry(std::make_shared<ObserverRegistry>(storage)) {}

    [[nodiscard]] std::unique_ptr<IFileFolderObserver>
    createObserver(const CanonicalAbsoluteIRI& folder, const ChangeMark& mark, ObservationLevel level) override {
        return std::make_unique<FileFolderObserver>(registry, folder, mark, level);
    }

    void setObservationLevel(const CanonicalAbsoluteIRI& folder, ObservationLevel level) override {
        registry->SetLevel(folder, level);
    }

    /// Time checks know of a change when the folder is looked at, not before: nothing can be said for all at once.
    [[nodiscard]] ChangeReport getChangesSince(ChangeToken token) override {
        ChangeReport report;
        report.now = token;
        report.askEachObserver = true;
        return report;
    }

    [[nodiscard]] RemotePathPolicy getRemotePathPolicy() const noexcept override { return policy.load(); }
    void setRemotePathPolicy(RemotePathPolicy newPolicy) noexcept override { policy.store(newPolicy); }
    [[nodiscard]] ChangeHandleWarning getChangeHandleWarning() const noexcept override { return warning.load(); }
    void setChangeHandleWarning(ChangeHandleWarning newWarning) noexcept override { warning.store(newWarning); }

    [[nodiscard]] bool IsAbandoned() const noexcept { return registry->IsStorageGone(); }

private:
    const std::shared_ptr<ObserverRegistry> registry;
    std::atomic<RemotePathPolicy> policy = RemotePathPolicy::timecheckDir;
    std::atomic<ChangeHandleWarning> warning = ChangeHandleWarning::once;
};

/// The factories of all storage systems that are alive.
class FactoryTable {
public:
    IFileFolderObserverFactory& GetOrMake(const StorageSystemReference& storage) {
        const std::scoped_lock lock(mutex);
        // First, since a new storage system may stand where a dead one stood.
        std::erase_if(factories, [](const auto& entry) { return entry.second->IsAbandoned(); });
        auto& factory = factories[storage.get()];
        if (!factory)
            factory = std::make_unique<FileFolderObserverFactory>(storage);
        return *factory;
    }

private:
    std::mutex mutex;
    std::unordered_map<const StorageSystem*, std::unique_ptr<FileFolderObserverFactory>> factories;
};

} // namespace

IFileFolderObserverFactory& GetFileFolderObserverFactory(const StorageSystemReference& storage) {
    static FactoryTable table;
    return table.GetOrMake(storage);
}

} // namespace Tolvex
