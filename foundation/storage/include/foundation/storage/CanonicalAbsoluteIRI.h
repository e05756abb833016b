#pragma once

#include "foundation/storage/AbsoluteIRI.h"

namespace Tolvex {

/// An IRI that is the one name of its folder: links resolved, no "." and "..". What entries, caches and comparisons are
/// keyed by. A child of a canonical folder keeps its parent's IRI plus its own name, also when that name is a link.
class KX_EXPORT CanonicalAbsoluteIRI : public AbsoluteIRI {
public:
    CanonicalAbsoluteIRI() noexcept = default;

    /// Canonicalises `location`, extended by the relative path `relative` when that is not empty. IRIs of scheme "file"
    /// are resolved on the disk as far as they exist; what does not exist is cleaned by text alone, as are IRIs of
    /// other schemes. Never throws for a missing folder.
    CanonicalAbsoluteIRI(const AbsoluteIRI& location, ustring_view relative);

    /// Vouches that `location` is canonical already; storage systems and entries say so of what they resolved.
    [[nodiscard]] static CanonicalAbsoluteIRI fromCanonical(AbsoluteIRI location) noexcept;

    [[nodiscard]] CanonicalAbsoluteIRI getParent() const;
    [[nodiscard]] CanonicalAbsoluteIRI getChild(ustring_view name) const;
};

} // namespace Tolvex
