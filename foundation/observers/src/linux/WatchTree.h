#pragma once

#include "../FolderWatches.h"
#include "WatchNode.h"
#include "WatchQueue.h"

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

    WatchTree(IWatchListener& listener, std::size_t limit);
    WatchTree(const WatchTree&) = delete;
    WatchTree& operator=(const WatchTree&) = delete;

    [[nodiscard]] IFolderWatches::ArmResult Arm(ObservedFolder& folder, std::string_view path);
    void Release(ObservedFolder& folder) noexcept;
    /// Everything at and below `path` is suspect and has to be armed again.
    void SuspectPath(std::string_view path);
    void Drain();

    /// -1 as long as nothing was watched.
    [[nodiscard]] int GetQueueNumber() const noexcept { return queue.GetNumber(); }
    [[nodiscard]] int GetQueueError() const noexcept { return queue.GetError(); }
    [[nodiscard]] bool IsFull() const noexcept { return watchCount >= limit; }

    // For the arming of one way.

    /// Asks the folder at `path`, the node's, to tell what `mask` says, and no longer the one that it was watched at.
    [[nodiscard]] AddResult Add(WatchNode& node, const char* path, std::uint32_t mask);
    void SetMissing(WatchNode& node) noexcept;
    /// The node and all below have to be armed again, and their folders looked at.
    void Suspect(WatchNode& node);

private:
    [[nodiscard]] WatchNode& GetOrMake(std::string_view path);
    void Handle(const WatchQueue::Event& event);
    void HandleAt(WatchNode& node, const WatchQueue::Event& event);
    void Hold(WatchNode& node, int descriptor);
    void Drop(WatchNode& node) noexcept;
    void Prune(WatchNode* node) noexcept;

    IWatchListener& listener;
    const std::size_t limit;
    WatchQueue queue;
    std::unordered_multimap<int, WatchNode*> nodesByDescriptor; // nodes may share one
    std::size_t watchCount = 0;                                 // distinct descriptors
    std::unique_ptr<WatchNode> root;
};

} // namespace Tolvex
