#include "WatchTree.h"

#include "WayArming.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <sys/inotify.h>
#include <sys/stat.h>

namespace Tolvex {
namespace {

/// Calls `step(name)` for each name of an absolute path until it returns false.
template <class Step>
void WalkNames(std::string_view path, Step&& step) {
    for (std::size_t start = 1; start < path.size();) {
        const auto end = std::min(path.find('/', start), path.size());
        if (!step(path.substr(start, end - start)))
            return;
        start = end + 1;
    }
}

bool IsLink(const char* path) {
    struct stat state {};
    return ::lstat(path, &state) == 0 && S_ISLNK(state.st_mode);
}

} // namespace

WatchTree::WatchTree(IWatchListener& listener, const ObservationOptions& options)
    : listener(listener), options(options), root(std::make_unique<WatchNode>(nullptr, std::string_view())) {}

IFolderWatches::ArmResult WatchTree::Arm(ObservedFolder& folder, std::string_view path) {
    if (path.size() >= PATH_MAX)
        return IFolderWatches::ArmResult::unsuitable;
    if (!queue.Open()) {
        shortage.MissQueue(queue.GetError());
        return IFolderWatches::ArmResult::noWatchLeft;
    }
    if (!folder.node) {
        folder.node = &GetOrMake(path);
        folder.node->folder = &folder;
    }
    const auto result = WayArming(*this, *folder.node, path).Run();
    if (result == IFolderWatches::ArmResult::unsuitable || result == IFolderWatches::ArmResult::noWatchLeft)
        Release(folder);
    return result;
}

void WatchTree::Release(ObservedFolder& folder) noexcept {
    if (!folder.node)
        return;
    folder.node->folder = nullptr;
    Prune(std::exchange(folder.node, nullptr));
}

void WatchTree::SuspectPath(std::string_view path) noexcept {
    auto* node = root.get();
    WalkNames(path, [&](std::string_view name) {
        node = node->FindChild(name);
        return node != nullptr;
    });
    if (node)
        Suspect(*node);
}

void WatchTree::Drain() noexcept {
    if (queue.GetNumber() < 0)
        return;
    std::size_t count = 0;
    queue.ReadAll([&](const WatchQueue::Event& event) {
        if (++count <= options.eventLimit)
            Handle(event);
    });
    if (count > options.eventLimit)
        Suspect(*root);
}

bool WatchTree::IsFull() {
    const auto allowed = options.watchLimit;
    if (!allowed && watchCount == 0)
        limit = WatchShortage::GetShare();
    if (watchCount < allowed.value_or(limit.value_or(watchCount + 1)))
        return false;
    if (allowed)
        shortage.MeetOwnLimit(*allowed);
    else
        shortage.MeetShare(*limit);
    return true;
}

WatchTree::AddResult WatchTree::TellFailure(int error, const char* path) noexcept {
    if (error == ENOENT)
        return AddResult::missing;
    if (error == ENOTDIR)
        return IsLink(path) ? AddResult::unsuitable : AddResult::missing;
    if (error != ENOSPC && error != ENOMEM)
        return AddResult::unsuitable;
    shortage.MeetRefusal(error);
    return AddResult::noWatchLeft;
}

WatchTree::AddResult WatchTree::Add(WatchNode& node, const char* path, std::uint32_t mask) {
    if (node.descriptor == WatchNode::noDescriptor && IsFull())
        return AddResult::noWatchLeft;
    // A link would let changes of its target's way pass unseen.
    const int descriptor = queue.Add(path, mask | IN_ONLYDIR | IN_DONT_FOLLOW | IN_EXCL_UNLINK);
    if (descriptor < 0)
        return TellFailure(errno, path);
    if (descriptor != node.descriptor) {
        if (node.state == WatchNode::State::watched)
            Suspect(node);
        Hold(node, descriptor);
    }
    node.mask |= mask;
    node.state = WatchNode::State::watched;
    return AddResult::done;
}

void WatchTree::SetMissing(WatchNode& node) noexcept {
    Drop(node);
    node.state = WatchNode::State::missing;
}

/// Takes no memory, so that nothing that was told is lost; goes as deep as a path has names.
void WatchTree::Suspect(WatchNode& node) noexcept {
    if (node.state == WatchNode::State::unknown)
        return; // so is all below
    node.state = WatchNode::State::unknown;
    if (node.folder)
        listener.OnSuspect(*node.folder);
    for (const auto& child : node.children)
        Suspect(*child);
}

WatchNode& WatchTree::GetOrMake(std::string_view path) {
    auto* node = root.get();
    WalkNames(path, [&](std::string_view name) {
        auto* const child = node->FindChild(name);
        node = child ? child : node->children.insert(std::make_unique<WatchNode>(node, name)).first->get();
        return true;
    });
    return *node;
}

void WatchTree::Handle(const WatchQueue::Event& event) noexcept {
    if ((event.mask & IN_Q_OVERFLOW) != 0) // what was lost may have been anything
        return Suspect(*root);
    const auto [first, last] = nodesByDescriptor.equal_range(event.descriptor);
    std::for_each(first, last, [&](const auto& entry) { HandleAt(*entry.second, event); });
}

void WatchTree::HandleAt(WatchNode& node, const WatchQueue::Event& event) noexcept {
    if (event.name.empty()) // the folder itself was moved, removed, detached or given other rights, or its watch ended
        return Suspect(node);
    if ((event.mask & WayArming::namesMask) == 0)
        return; // something in the folder was given other rights
    // The descriptor of a suspect node may be that of a folder that has moved on; its own is looked at anyway.
    if (node.folder && node.state == WatchNode::State::watched)
        listener.OnChanged(*node.folder);
    if (auto* const child = node.FindChild(event.name))
        Suspect(*child);
}

void WatchTree::Hold(WatchNode& node, int descriptor) {
    const bool isNew = !nodesByDescriptor.contains(descriptor);
    nodesByDescriptor.emplace(descriptor, &node);
    watchCount += isNew ? 1 : 0;
    Drop(node);
    node.descriptor = descriptor;
}

void WatchTree::Drop(WatchNode& node) noexcept {
    if (node.descriptor == WatchNode::noDescriptor)
        return;
    const auto [first, last] = nodesByDescriptor.equal_range(node.descriptor);
    const bool isOnlyOne = std::next(first) == last;
    nodesByDescriptor.erase(std::find_if(first, last, [&](const auto& entry) { return entry.second == &node; }));
    if (isOnlyOne) {
        queue.Remove(node.descriptor);
        --watchCount;
    }
    node.descriptor = WatchNode::noDescriptor;
    node.mask = 0;
}

/// Removes the nodes that nobody needs any more, from `node` upwards.
void WatchTree::Prune(WatchNode* node) noexcept {
    while (node->parent && !node->folder && node->children.empty()) {
        auto& siblings = node->parent->children;
        auto* const parent = node->parent;
        Drop(*node);
        siblings.erase(siblings.find(std::string_view(node->name)));
        node = parent;
    }
    if (!node->parent && !node->folder && node->children.empty()) {
        Drop(*node);
        node->state = WatchNode::State::unknown;
    }
}

} // namespace Tolvex
