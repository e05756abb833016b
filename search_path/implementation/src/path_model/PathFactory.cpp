#include "path_model/PathFactory.h"

#include "path_model/Path.h"

namespace PathManagement {

PathFactory::PathFactory(std::shared_ptr<AsynchronousWorkerQueue> queue) : queue(std::move(queue)) {}

PathFactory::~PathFactory() = default;

std::shared_ptr<const IPath> PathFactory::CreatePath(std::shared_ptr<const PathEntryVector> mainEntries,
                                                     const std::shared_ptr<const IPath>& previous) const {
    const auto* known = dynamic_cast<const Path*>(previous.get());
    auto index = known == nullptr ? std::make_unique<const LayeredIndex>(std::move(mainEntries))
                                  : std::make_unique<const LayeredIndex>(std::move(mainEntries), known->GetIndex());
    return std::make_shared<const Path>(std::move(index), queue);
}

} // namespace PathManagement
