#include "foundation/storage/CanonicalAbsoluteIRI.h"

#include "PathText.h"
#include "foundation/storage/StorageSystem.h"

namespace Tolvex {
namespace {

AbsoluteIRI Extend(const AbsoluteIRI& location, ustring_view relative) {
    if (relative.empty() || location.isEmpty())
        return location;
    ustring path(location.getPath());
    AppendName(path, relative);
    return AbsoluteIRI(location.getScheme(), path);
}

AbsoluteIRI Canonicalise(const AbsoluteIRI& location) {
    if (location.isEmpty())
        return location;
    if (location.getScheme() == "file")
        return GetDiskStorageSystem()->canonicalise(location);
    return AbsoluteIRI(location.getScheme(), CleanPath(location.getPath()));
}

} // namespace

CanonicalAbsoluteIRI::CanonicalAbsoluteIRI(const AbsoluteIRI& location, ustring_view relative)
    : AbsoluteIRI(Canonicalise(Extend(location, relative))) {}

CanonicalAbsoluteIRI CanonicalAbsoluteIRI::fromCanonical(AbsoluteIRI location) noexcept {
    CanonicalAbsoluteIRI result;
    static_cast<AbsoluteIRI&>(result) = std::move(location);
    return result;
}

CanonicalAbsoluteIRI CanonicalAbsoluteIRI::getParent() const {
    return fromCanonical(AbsoluteIRI::getParent());
}

CanonicalAbsoluteIRI CanonicalAbsoluteIRI::getChild(ustring_view name) const {
    return fromCanonical(AbsoluteIRI::getChild(name));
}

} // namespace Tolvex
