#pragma once

#include "../FolderWatches.h"
#include "WatchNode.h"
#include "WatchQueue.h"
#include "WatchShortage.h"

#include <optional>
#include <string>
#include <unordered_map>

namespace Tolvex {

/// The watches on observed folders and on the folders above them.
///
/// A folder's own watch tells of its content. It does not tell that an ancestor was renamed, nor, of a folder that some
/// process holds open, that it was removed. So each folder above is asked to tell when it is moved or removed itself,
/// and the last two that are there tell of the names in them. What is told of a name makes everything behind that name
/// suspect.
class WatchTree {
public:
    enum class AddResult { done, missing, unsuitable, noWatchLeft };

    WatchTree(IWatchListener& listener, const ObservationOptions& options);
    WatchTree(const WatchTree&) = delete;
    WatchTree& operator=(const WatchTree&) = delete;

    [[nodiscard]] IFolderWatches::ArmResult Arm(ObservedFolder& folder, std::string_view path);
    void Release(ObservedFolder& folder) noexcept;
    /// Everything at and below `path` is suspect and has to be armed again.
    void SuspectPath(std::string_view path) noexcept;
    void Drain() noexcept;

    /// False when the system gives no queue.
    [[nodiscard]] bool OpenQueue() noexcept { return queue.Open(); }
    /// -1 as long as nothing was watched.
    [[nodiscard]] int GetQueueNumber() const noexcept { return queue.GetNumber(); }
    /// Why the last watch that was refused was.
    [[nodiscard]] const WatchShortage& GetShortage() const noexcept { return shortage; }

    // For the arming of one way.

    /// Asks the folder at `path`, the node's, to tell what `mask` says, and no longer the one that it was watched at.
    [[nodiscard]] AddResult Add(WatchNode& node, const char* path, std::uint32_t mask);
    void SetMissing(WatchNode& node) noexcept;
    /// The node and all below have to be armed again, and their folders looked at.
    void Suspect(WatchNode& node) noexcept;

private:
    [[nodiscard]] WatchNode& GetOrMake(std::string_view path);
    [[nodiscard]] bool IsFull();
    [[nodiscard]] AddResult TellFailure(int error, const char* path) noexcept;
    void Handle(const WatchQueue::Event& event) noexcept;
    void HandleAt(WatchNode& node, const WatchQueue::Event& event) noexcept;
    void Hold(WatchNode& node, int descriptor);
    void Drop(WatchNode& node) noexcept;
    void Prune(WatchNode* node) noexcept;

    IWatchListener& listener;
    const ObservationOptions& options;
    std::optional<std::size_t> limit; // found when the first watch is taken; none when there is none
    WatchShortage shortage;
    WatchQueue queue;
    std::unordered_multimap<int, WatchNode*> nodesByDescriptor; // nodes may share one
    std::size_t watchCount = 0;                                 // distinct descriptors
    std::unique_ptr<WatchNode> root;
};

} // namespace Tolvex
