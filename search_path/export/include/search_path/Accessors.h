#pragma once

#include "path_interfaces/IFolderMonitor.h"
#include "path_interfaces/IPathEntryFactory.h"
#include "path_interfaces/IPathFactory.h"

namespace PathManagement {

/// The process's path-entry factory, made on first use over the environment's storage system; the same object for as
/// long as the process lives. Safe from any thread. What goes wrong while it is made is thrown, and the next call tries
/// again.
KX_EXPORT IPathEntryFactory& GetPathEntryFactory();

/// The process's path factory. Safe from any thread.
KX_EXPORT const IPathFactory& GetCurrentPathFactory();

/// The process's folder monitor. REQUIRES: one was installed. Valid until another one is.
KX_EXPORT IFolderMonitor& GetFolderMonitor();

/// Installs a folder monitor and destroys the one before; does nothing when it is given the holder of the present one.
/// For one thread at a time, and not while the present one is in use.
KX_EXPORT void SetFolderMonitor(std::unique_ptr<IFolderMonitor>&& monitor);

} // namespace PathManagement
