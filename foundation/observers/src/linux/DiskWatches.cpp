#include "../FolderWatches.h"
#include "StorageMap.h"
#include "WaitDescriptor.h"
#include "WatchTree.h"

#include <array>
#include <optional>
#include <poll.h>

namespace Tolvex {
namespace {

class DiskWatches final : public IFolderWatches {
public:
    DiskWatches(IWatchListener& listener, const ObservationOptions& options)
        : listener(listener), options(options), tree(listener, options) {}

    [[nodiscard]] StorageKind GetKind(const AbsoluteIRI& folder) override {
        return GetStorages().GetKind(ToUtf8(folder.getPath()));
    }

    [[nodiscard]] std::optional<Way> Follow(const AbsoluteIRI& folder) override { return GetStorages().Follow(folder); }

    [[nodiscard]] ArmResult Arm(ObservedFolder& folder) override {
        return tree.Arm(folder, ToUtf8(folder.location.getPath()));
    }

    void Release(ObservedFolder& folder) noexcept override { tree.Release(folder); }

    void Drain() override {
        std::array<pollfd, 2> waiting{pollfd{tree.GetQueueNumber(), POLLIN, 0},
                                      pollfd{storages ? storages->GetNumber() : -1, POLLPRI, 0}};
        const int ready = ::poll(waiting.data(), waiting.size(), 0);
        const bool isInterrupted = ready < 0; // then each is looked at
        if (storages && (isInterrupted || (waiting[1].revents & POLLPRI) != 0))
            isTableOld = true; // which the system tells only once
        if (isTableOld || !changedPlaces.empty())
            TellMountChanges();
        if (isInterrupted || waiting[0].revents != 0)
            tree.Drain();
    }

    [[nodiscard]] std::optional<WaitHandle> GetWaitHandle() override {
        if (tree.OpenQueue() && !waitDescriptor)
            waitDescriptor = WaitDescriptor::Open(tree.GetQueueNumber());
        return waitDescriptor ? std::optional<WaitHandle>(waitDescriptor->GetNumber()) : std::nullopt;
    }

    [[nodiscard]] std::string DescribeShortage() const override { return tree.GetShortage().Describe(); }

private:
    [[nodiscard]] StorageMap& GetStorages() {
        if (!storages)
            storages.emplace(options.remoteFolders);
        return *storages;
    }

    /// Whatever throws here leaves behind what is still to be told.
    void TellMountChanges() {
        TellChangedPlaces();
        if (!isTableOld)
            return;
        changedPlaces = storages->Update();
        isTableOld = false;
        TellChangedPlaces();
    }

    void TellChangedPlaces() {
        for (; !changedPlaces.empty(); changedPlaces.pop_back()) {
            tree.SuspectPath(changedPlaces.back());
            listener.OnMountChanged(changedPlaces.back());
        }
    }

    IWatchListener& listener;
    const ObservationOptions& options;
    WatchTree tree;
    std::optional<StorageMap> storages; // read when it is first needed
    bool isTableOld = false;
    std::vector<std::string> changedPlaces;       // that nobody was told of yet
    std::optional<WaitDescriptor> waitDescriptor; // made when somebody wants to wait
};

} // namespace

std::unique_ptr<IFolderWatches> CreateDiskWatches(IWatchListener& listener, const ObservationOptions& options) {
    return std::make_unique<DiskWatches>(listener, options);
}

} // namespace Tolvex
