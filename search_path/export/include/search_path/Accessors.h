#pragma once

#include "path_interfaces/IPathEntryFactory.h"
#include "path_interfaces/IPathFactory.h"

namespace PathManagement {

/// The process's path-entry factory, made on first use over the environment's storage system; the same object for as
/// long as the process lives. Safe from any thread. What goes wrong while it is made is thrown, and the next call tries
/// again.
KX_EXPORT IPathEntryFactory& GetPathEntryFactory();

/// The process's path factory. Safe from any thread.
KX_EXPORT const IPathFactory& GetCurrentPathFactory();

} // namespace PathManagement
