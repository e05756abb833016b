#pragma once

#include "path_interfaces/IMainSearchPathManager.h"
#include "path_interfaces/IPathEntryFactory.h"

#include <iosfwd>

namespace PathManagement::detail {

/// Writes the path that look-ups use, one line an entry, in path order; child entries are set in below their main
/// entry. For the thread that changes the manager's path.
void DumpPath(std::ostream& out, const IMainSearchPathManager& manager, const IPathEntryFactory& factory);

/// Writes what of the factory and its observers is not a matter of one path: folders, settings, counters.
void DumpSurroundings(std::ostream& out, const IPathEntryFactory& factory);

} // namespace PathManagement::detail
