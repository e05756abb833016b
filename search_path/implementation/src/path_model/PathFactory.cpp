#include "path_model/PathFactory.h"

#include "path_model/Path.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace PathManagement {

namespace {

/// The replacements by place, or nothing when one of `replaced` is not the first main entry of its folder.
std::optional<std::vector<EntryReplacement>> FindPlaces(const LayeredIndex& index, const PathEntryVector& replaced,
                                                        const PathEntryVector& replacements) {
    std::vector<EntryReplacement> found;
    found.reserve(replaced.size());
    for (std::size_t i = 0; i < replaced.size(); ++i) {
        const auto place = index.FindLocation(replaced[i]->GetIRI());
        if (!place || index.GetMainEntries()[place->GetMainPlace()] != replaced[i])
            return std::nullopt;
        found.push_back({place->GetMainPlace(), replacements[i]});
    }
    std::ranges::sort(found, {}, &EntryReplacement::place);
    return found;
}

} // namespace

PathFactory::PathFactory(std::shared_ptr<AsynchronousWorkerQueue> queue) : queue(std::move(queue)) {}

PathFactory::~PathFactory() = default;

std::shared_ptr<const IPath> PathFactory::CreatePath(std::shared_ptr<const PathEntryVector> mainEntries,
                                                     const std::shared_ptr<const IPath>& previous) const {
    const auto* known = dynamic_cast<const Path*>(previous.get());
    auto index = known == nullptr ? std::make_unique<const LayeredIndex>(std::move(mainEntries))
                                  : std::make_unique<const LayeredIndex>(std::move(mainEntries), known->GetIndex());
    return std::make_shared<const Path>(std::move(index), queue);
}

std::shared_ptr<const IPath> PathFactory::DerivePath(const std::shared_ptr<const IPath>& previous,
                                                     const PathEntryVector& replaced,
                                                     const PathEntryVector& replacements) const {
    const auto* known = dynamic_cast<const Path*>(previous.get());
    if (known == nullptr)
        return nullptr;
    const auto found = FindPlaces(known->GetIndex(), replaced, replacements);
    if (!found)
        return nullptr;
    return std::make_shared<const Path>(std::make_unique<const LayeredIndex>(known->GetIndex(), *found), queue);
}

} // namespace PathManagement
