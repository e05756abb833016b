#pragma once

#include "foundation/storage/CanonicalAbsoluteIRI.h"

namespace PathManagement {

/// The text by which people know a location: the native path for scheme "file", the IRI's own text for any other.
[[nodiscard]] KX_EXPORT Tolvex::ustring GetStringFromIRI(const Tolvex::AbsoluteIRI& location);

/// The location that a text names: an absolute native path or an absolute IRI. Throws Tolvex::StorageError
/// (invalidLocation) for any other text.
[[nodiscard]] KX_EXPORT Tolvex::AbsoluteIRI GetIRIFromString(Tolvex::ustring_view text);

/// The canonical location of a path that may be relative to `workingFolder`. Throws as GetIRIFromString for an
/// empty text.
[[nodiscard]] KX_EXPORT Tolvex::CanonicalAbsoluteIRI
CanonicalizeRelativePathAgainstCWD(Tolvex::ustring_view path, const Tolvex::AbsoluteIRI& workingFolder);

} // namespace PathManagement
