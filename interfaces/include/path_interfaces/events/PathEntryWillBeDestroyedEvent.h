#pragma once

#include "path_interfaces/IPathEntry.h"

#include <utility>

namespace PathManagement {

/// Published at once, on whatever thread drops the last handle, while the entry is still whole. Handlers must not make
/// a handle of the entry.
///
/// An entry that nobody was handed announces its end, too, such as one that was made only to write a cache file. The
/// one that is in use at that location lives on then: handlers that keep something for an entry have to compare the
/// entry, not only its location.
class PathEntryWillBeDestroyedEvent {
public:
    PathEntryWillBeDestroyedEvent(const IPathEntry& entry, Tolvex::CanonicalAbsoluteIRI location) noexcept
        : entry(&entry), location(std::move(location)) {}

    [[nodiscard]] const IPathEntry& GetEntry() const noexcept { return *entry; }
    [[nodiscard]] const Tolvex::CanonicalAbsoluteIRI& GetCanonicalIRI() const noexcept { return location; }

private:
    const IPathEntry* entry;
    Tolvex::CanonicalAbsoluteIRI location;
};

} // namespace PathManagement
