#include "WayArming.h"

#include <algorithm>
#include <sys/inotify.h>

namespace Tolvex {
namespace {

constexpr std::uint32_t selfMask = IN_MOVE_SELF | IN_DELETE_SELF;

} // namespace

const std::uint32_t WayArming::namesMask = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;

WayArming::WayArming(WatchTree& tree, WatchNode& leaf, std::string_view path) : tree(tree), path(path) {
    std::size_t size = path.size();
    for (auto* node = &leaf; node; node = node->parent) {
        way.push_back({node, node->parent ? size : 1});
        size -= std::min(size, node->name.size() + 1);
    }
    std::reverse(way.begin(), way.end());
    FindFirstUnknown();
}

void WayArming::FindFirstUnknown() {
    next = way.size();
    while (next > 0 && way[next - 1].node->state != WatchNode::State::watched)
        --next;
    const bool isWholeWay = next == way.size();
    if (isWholeWay && (way.back().node->mask & GetMask(next - 1)) != GetMask(next - 1))
        --next; // it was watched for the sake of folders below only
}

std::uint32_t WayArming::GetMask(std::size_t step) const {
    return step + 1 == way.size() ? selfMask | namesMask | IN_ATTRIB : selfMask;
}

IFolderWatches::ArmResult WayArming::Run() {
    // Each turn goes a step down, or up where the way was cut meanwhile.
    for (std::size_t turns = 4 * way.size() + 16; turns > 0; --turns) {
        if (next == way.size())
            return Result::settled;
        if (way[next].node->state == WatchNode::State::missing) {
            std::for_each(way.begin() + static_cast<std::ptrdiff_t>(next), way.end(),
                          [this](const Step& step) { tree.SetMissing(*step.node); });
            return Result::settled;
        }
        const auto result = ArmNext();
        if (result == AddResult::unsuitable)
            return Result::unsuitable;
        if (result == AddResult::noWatchLeft)
            return Result::noWatchLeft;
    }
    return Result::unsettled;
}

WatchTree::AddResult WayArming::ArmNext() {
    // A folder that somebody holds open does not tell that it was removed: the one above has to.
    if (next + 1 == way.size() && next > 0)
        if (const auto above = RequireNames(next - 1); above != AddResult::done)
            return above == AddResult::missing ? StepUpTo(next - 1) : above;
    const auto result = Add(next, GetMask(next));
    if (result == AddResult::missing)
        return WatchAbsence();
    if (result == AddResult::done) {
        ++next;
        absenceIsTold = false;
    }
    return result;
}

/// Before a folder is taken for missing, the one above has to tell when it comes, and the one above that when it is
/// not that one any more; then the look is repeated.
WatchTree::AddResult WayArming::WatchAbsence() {
    if (next == 0)
        return AddResult::unsuitable;
    if (absenceIsTold) {
        way[next].node->state = WatchNode::State::missing;
        return AddResult::done;
    }
    for (const std::size_t step : {next < 2 ? 0 : next - 2, next - 1}) {
        const auto result = RequireNames(step);
        if (result != AddResult::done)
            return result == AddResult::missing ? StepUpTo(step) : result;
    }
    absenceIsTold = true;
    return AddResult::done;
}

WatchTree::AddResult WayArming::StepUpTo(std::size_t step) {
    tree.Suspect(*way[step].node);
    next = step;
    absenceIsTold = false;
    return AddResult::done;
}

WatchTree::AddResult WayArming::RequireNames(std::size_t step) {
    auto& node = *way[step].node;
    if (node.state == WatchNode::State::watched && (node.mask & namesMask) == namesMask)
        return AddResult::done;
    return Add(step, selfMask | namesMask);
}

WatchTree::AddResult WayArming::Add(std::size_t step, std::uint32_t mask) {
    const auto& [node, size] = way[step];
    return tree.Add(*node, std::string(path, 0, size).c_str(), mask);
}

} // namespace Tolvex
