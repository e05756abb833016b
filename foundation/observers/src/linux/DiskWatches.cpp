#include "../FolderWatches.h"
#include "MountTable.h"
#include "WatchShortage.h"
#include "WatchTree.h"

#include <array>
#include <optional>
#include <poll.h>

namespace Tolvex {
namespace {

class DiskWatches final : public IFolderWatches {
public:
    DiskWatches(IWatchListener& listener, std::size_t limit)
        : listener(listener), limit(limit), tree(listener, limit) {}

    [[nodiscard]] StorageKind GetKind(const AbsoluteIRI& folder) override {
        if (!mounts)
            mounts.emplace();
        return mounts->GetKind(ToUtf8(folder.getPath()));
    }

    [[nodiscard]] ArmResult Arm(ObservedFolder& folder) override {
        return tree.Arm(folder, ToUtf8(folder.location.getPath()));
    }

    void Release(ObservedFolder& folder) noexcept override { tree.Release(folder); }

    void Drain() override {
        std::array<pollfd, 2> waiting{pollfd{tree.GetQueueNumber(), POLLIN, 0},
                                      pollfd{mounts ? mounts->GetNumber() : -1, POLLPRI, 0}};
        const int ready = ::poll(waiting.data(), waiting.size(), 0);
        if (ready == 0)
            return;
        const bool isInterrupted = ready < 0; // then each is looked at
        if (mounts && (isInterrupted || (waiting[1].revents & POLLPRI) != 0))
            TellMountChanges();
        if (isInterrupted || waiting[0].revents != 0)
            tree.Drain();
    }

    [[nodiscard]] std::string DescribeShortage() const override {
        if (tree.GetQueueError() != 0)
            return WatchShortage::DescribeQueueFailure(tree.GetQueueError());
        return tree.IsFull() ? WatchShortage::DescribeOwnLimit(limit) : WatchShortage::DescribeWatchLimit();
    }

private:
    void TellMountChanges() {
        for (const auto& path : mounts->Update()) {
            tree.SuspectPath(path);
            listener.OnMountChanged(path);
        }
    }

    IWatchListener& listener;
    const std::size_t limit;
    WatchTree tree;
    std::optional<MountTable> mounts; // read when it is first needed
};

} // namespace

std::unique_ptr<IFolderWatches> CreateDiskWatches(IWatchListener& listener, std::size_t limit) {
    return std::make_unique<DiskWatches>(listener, limit);
}

} // namespace Tolvex
