#pragma once

#include <cstdint>

namespace PathManagement {

/// How much a refresh takes for changed before it looks. Whatever the value, only entries that then report that they
/// are out of date are read anew.
enum class RefreshType : std::uint32_t {
    knownChanges = 0,      ///< nothing: what already reports that it is out of date
    markCurrentFolder = 1, ///< the entries of the current folder's path
    markEverything = 2,    ///< the entries of the whole path
};

} // namespace PathManagement
