#pragma once

#include "foundation/storage/AbsoluteIRI.h"

#include <unordered_map>

namespace Tolvex {

/// Who owns a folder and, until another is met, all that lies below it.
template <class Owner>
class FolderOwners {
public:
    /// False, and nothing is changed, when the folder itself has an owner already.
    bool Add(const AbsoluteIRI& folder, Owner owner) { return owners.emplace(folder, std::move(owner)).second; }

    /// The owner of the folder or of the nearest folder above it that has one; null when there is none. Valid as long
    /// as this object.
    [[nodiscard]] const Owner* Find(const AbsoluteIRI& folder) const {
        if (owners.empty() || folder.isEmpty())
            return nullptr;
        for (AbsoluteIRI at = folder;; at = at.getParent()) {
            if (const auto found = owners.find(at); found != owners.end())
                return &found->second;
            if (!at.hasParent())
                return nullptr;
        }
    }

private:
    std::unordered_map<AbsoluteIRI, Owner, IRIHash> owners;
};

} // namespace Tolvex
