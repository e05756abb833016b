#include "path_utilities/PathReplacement.h"

#include "path_interfaces/IPathDerivation.h"

#include <unordered_map>
#include <utility>

namespace PathManagement {

namespace {

PathEntryVector Exchange(PathEntryVector entries, const PathEntryVector& replaced,
                         const PathEntryVector& replacements) {
    std::unordered_map<const IPathEntry*, std::size_t> places;
    for (std::size_t i = 0; i < replaced.size(); ++i)
        places.emplace(replaced[i].get(), i);
    for (auto& entry : entries)
        if (const auto found = places.find(entry.get()); found != places.end())
            entry = replacements[found->second];
    return entries;
}

} // namespace

std::shared_ptr<const IPath> CreatePathWithReplacements(const IPathFactory& factory,
                                                        const std::shared_ptr<const IPath>& previous,
                                                        const PathEntryVector& replaced,
                                                        const PathEntryVector& replacements) {
    if (const auto* derivation = dynamic_cast<const IPathDerivation*>(&factory))
        if (auto derived = derivation->DerivePath(previous, replaced, replacements))
            return derived;
    auto entries = Exchange(*previous->GetMainEntries(), replaced, replacements);
    return factory.CreatePath(std::make_shared<const PathEntryVector>(std::move(entries)), previous);
}

} // namespace PathManagement
