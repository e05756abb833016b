#pragma once

#include "foundation/storage/Folder.h"
#include "foundation/storage/StorageError.h"

#include <memory>
#include <span>

namespace Tolvex {

/// A tree of folders and files under one scheme. Safe from any thread; no lock is held while the system is asked.
class KX_EXPORT StorageSystem {
public:
    virtual ~StorageSystem();

    [[nodiscard]] virtual std::string_view getScheme() const noexcept = 0;

    /// Opens a folder, following links. Throws StorageError.
    [[nodiscard]] virtual std::unique_ptr<Folder> openFolder(const AbsoluteIRI& location) const = 0;

    /// The mark that opening the folder now would take, without opening it; a mark that is not `present` when it
    /// could not be opened. Never throws.
    [[nodiscard]] virtual ChangeMark takeChangeMark(const AbsoluteIRI& location) const noexcept = 0;

    /// What takeChangeMark says of each of `locations`; cheaper by far for many that lie near to each other.
    /// REQUIRES: `marks` has as many elements.
    virtual void takeChangeMarks(std::span<const AbsoluteIRI* const> locations,
                                 std::span<ChangeMark> marks) const noexcept;

    /// Resolves links as far as the location exists; the rest is cleaned by text alone. Never throws for a location
    /// that does not exist.
    [[nodiscard]] virtual CanonicalAbsoluteIRI canonicalise(const AbsoluteIRI& location) const = 0;
};

using StorageSystemReference = std::shared_ptr<const StorageSystem>;

/// The machine's disks, scheme "file". One for the process.
[[nodiscard]] KX_EXPORT const StorageSystemReference& GetDiskStorageSystem();

/// A storage system on the machine's disks that takes the time from `clock`, for tests of equal stamps. The
/// clock outlives the storage system and the folders opened on it.
[[nodiscard]] KX_EXPORT StorageSystemReference CreateDiskStorageSystem(const IClock& clock);

} // namespace Tolvex
