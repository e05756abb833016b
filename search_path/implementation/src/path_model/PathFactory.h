#pragma once

#include "change_tracking/AsynchronousWorkerQueue.h"
#include "path_interfaces/IPathDerivation.h"
#include "path_interfaces/IPathFactory.h"

#include <memory>

namespace PathManagement {

/// Makes paths that share one worker queue.
class PathFactory final : public IPathFactory, public IPathDerivation {
public:
    explicit PathFactory(std::shared_ptr<AsynchronousWorkerQueue> queue);
    ~PathFactory() override;

    [[nodiscard]] std::shared_ptr<const IPath> CreatePath(std::shared_ptr<const PathEntryVector> mainEntries,
                                                          const std::shared_ptr<const IPath>& previous) const override;
    [[nodiscard]] std::shared_ptr<const IPath> DerivePath(const std::shared_ptr<const IPath>& previous,
                                                          const PathEntryVector& replaced,
                                                          const PathEntryVector& replacements) const override;

private:
    std::shared_ptr<AsynchronousWorkerQueue> queue;
};

} // namespace PathManagement
