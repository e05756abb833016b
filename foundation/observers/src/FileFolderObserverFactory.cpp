#include "ObserverRegistry.h"
#include "foundation/events/EventMgr.h"

#include <new>
#include <unordered_map>

namespace Tolvex {
namespace {

class FileFolderObserverFactory final : public IFileFolderObserverFactory {
public:
    FileFolderObserverFactory(const StorageSystemReference& storage, ObservationOptions options)
        : registry(new ObserverRegistry(storage, std::move(options))),
          reports(localEvents->Subscribe<FileFolderChangedEvent>([registry = registry](const auto& event) {
              if (const auto folder = event.GetFolder())
                  registry->MarkChanged(*folder, event.GetFrozenInclusion());
          })) {}

    [[nodiscard]] std::unique_ptr<IFileFolderObserver>
    createObserver(const CanonicalAbsoluteIRI& folder, const ChangeMark& mark, ObservationLevel level) override {
        return std::make_unique<FileFolderObserver>(registry, folder, mark, level);
    }

    void setObservationLevel(const CanonicalAbsoluteIRI& folder, ObservationLevel level) override {
        registry->SetLevel(folder, level);
    }

    void lookAt(std::span<const CanonicalAbsoluteIRI> folders) override { registry->LookAt(folders); }

    [[nodiscard]] ChangeReport getChangesSince(ChangeToken token) override {
        try {
            return registry->GetChangesSince(token);
        } catch (const std::bad_alloc&) {
            return {token, {}, true, true};
        }
    }

    [[nodiscard]] std::optional<WaitHandle> getWaitHandle() override { return registry->GetWaitHandle(); }

    [[nodiscard]] RemotePathPolicy getRemotePathPolicy() const noexcept override {
        return registry->GetRemotePathPolicy();
    }
    void setRemotePathPolicy(RemotePathPolicy policy) noexcept override { registry->SetRemotePathPolicy(policy); }

    [[nodiscard]] ChangeHandleWarning getChangeHandleWarning() const noexcept override {
        return registry->GetShortageWarning().GetSetting();
    }
    void setChangeHandleWarning(ChangeHandleWarning warning) noexcept override {
        registry->GetShortageWarning().SetSetting(warning);
    }
    [[nodiscard]] std::string takeChangeHandleWarning() override { return registry->GetShortageWarning().Take(); }

    [[nodiscard]] bool IsAbandoned() const noexcept { return registry->IsStorageGone(); }

private:
    const boost::intrusive_ptr<ObserverRegistry> registry;
    const boost::shared_ptr<LocalEventMgr> localEvents = createLocalEventMgr();
    const ScopedConnection reports; // cut first
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
            factory = std::make_unique<FileFolderObserverFactory>(storage, ObservationOptions());
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

std::unique_ptr<IFileFolderObserverFactory> CreateFileFolderObserverFactory(const StorageSystemReference& storage,
                                                                            ObservationOptions options) {
    return std::make_unique<FileFolderObserverFactory>(storage, std::move(options));
}

} // namespace Tolvex
