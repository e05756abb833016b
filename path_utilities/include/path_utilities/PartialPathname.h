#pragma once

#include "foundation/storage/AbsoluteIRI.h"
#include "foundation/storage/PathComparator.h"

#include <boost/container/small_vector.hpp>

#include <span>

namespace PathManagement {

namespace Constants {
/// The characters that separate the names of a pathname; one character on Linux.
inline constexpr Tolvex::ustring_view PathnameSeparatorStr = u"/";
} // namespace Constants

/// The folder names of a partial path, first to last.
using PathnameComponents = boost::container::small_vector<Tolvex::ustring_view, 8>;

/// Takes a partial path apart at its separators; empty names are dropped. The views point into `partialPath`.
[[nodiscard]] KX_EXPORT PathnameComponents SplitPartialPathname(Tolvex::ustring_view partialPath);

/// True when the components are the last names of the location's path, each compared by the file system's own rule.
/// True for no components.
[[nodiscard]] KX_EXPORT bool DoesPartialPathnameMatchPathEntryIRI(std::span<const Tolvex::ustring_view> components,
                                                                  const Tolvex::AbsoluteIRI& location,
                                                                  const Tolvex::PathComparator& comparator) noexcept;

} // namespace PathManagement
