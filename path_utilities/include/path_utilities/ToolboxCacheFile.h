#pragma once

#include "foundation/storage/Clock.h"
#include "path_interfaces/IPathEntryFactory.h"
#include "path_interfaces/ToolboxCacheExceptions.h"

#include <filesystem>

namespace PathManagement {

/// Saves the factory's entries below `cacheRoot` in a path cache file, which is replaced whole or not at all: what was
/// written is read back first. The file's modification time is the moment whose state it records, so it has to be kept
/// when the file is copied. Throws UnableToSaveToolboxCacheException, naming the file, and the old file stays.
KX_EXPORT void WriteToolboxPathCache(const IPathEntryFactory& factory, const Tolvex::AbsoluteIRI& cacheRoot,
                                     const std::filesystem::path& file,
                                     const Tolvex::IClock& clock = Tolvex::GetSystemClock());

/// Loads such a file. Throws ToolboxCacheWrongFormatException, naming the file, when it cannot be opened or is not in
/// the format, and Tolvex::StorageError when the root cannot be opened; nothing of the file is used then.
KX_EXPORT void LoadToolboxPathCache(IPathEntryFactory& factory, const Tolvex::AbsoluteIRI& cacheRoot,
                                    const std::filesystem::path& file);

} // namespace PathManagement
