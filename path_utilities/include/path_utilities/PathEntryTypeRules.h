#pragma once

#include "foundation/storage/CanonicalAbsoluteIRI.h"
#include "path_interfaces/PathEntryType.h"

namespace PathManagement {

/// The kind of a folder, decided by its own name and its parent's: "+name" package, "@name" method folder, or UDD class
/// folder when the parent is itself called "@name"; "private"; "resources"; else a main folder. Exact spelling; a mark
/// with nothing behind it marks nothing.
[[nodiscard]] KX_EXPORT PathEntryType GetPathEntryTypeFromBaseName(Tolvex::ustring_view parentBaseName,
                                                                   Tolvex::ustring_view baseName) noexcept;

/// As above for a location.
[[nodiscard]] KX_EXPORT PathEntryType GetPathEntryTypeFromLocation(const Tolvex::AbsoluteIRI& location) noexcept;

/// The name of a package or class folder without its mark; any other name as it is.
[[nodiscard]] KX_EXPORT Tolvex::ustring_view GetNameWithoutMark(Tolvex::ustring_view baseName) noexcept;

} // namespace PathManagement
