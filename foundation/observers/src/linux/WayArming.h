#pragma once

#include "WatchTree.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Tolvex {

/// Arms the watches on the way to one observed folder, from the top: whatever is replaced behind a watch that is armed
/// already will be told, so what this finds when it is done stays true until something is told.
class WayArming {
public:
    /// What a folder tells of the names in it.
    static const std::uint32_t namesMask;

    WayArming(WatchTree& tree, WatchNode& leaf, std::string_view path);

    [[nodiscard]] IFolderWatches::ArmResult Run();

private:
    using Result = IFolderWatches::ArmResult;
    using AddResult = WatchTree::AddResult;
    struct Step {
        WatchNode* node;
        std::size_t pathSize; // of the path down to it
    };

    void FindFirstUnknown();
    [[nodiscard]] std::uint32_t GetMask(std::size_t step) const;
    [[nodiscard]] AddResult Add(std::size_t step, std::uint32_t mask);
    [[nodiscard]] AddResult RequireNames(std::size_t step);
    [[nodiscard]] AddResult ArmNext();
    [[nodiscard]] AddResult WatchAbsence();
    [[nodiscard]] AddResult StepUpTo(std::size_t step);

    WatchTree& tree;
    const std::string path;
    std::vector<Step> way;      // from the root
    std::size_t next = 0;       // all above it are watched
    bool absenceIsTold = false; // the last two above `next` tell of names
};

} // namespace Tolvex
