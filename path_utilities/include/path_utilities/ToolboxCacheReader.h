#pragma once

#include "path_interfaces/ToolboxCacheExceptions.h"
#include "path_utilities/ToolboxCacheRecord.h"

#include <functional>
#include <iosfwd>
#include <memory>

namespace PathManagement {

/// Reads a path cache file in one pass: calls `deliver` with each top-level folder, in file order, as soon as its
/// element is complete, and reads nothing behind the closing root element. Keeps one top-level folder at a time.
///
/// Throws ToolboxCacheWrongFormatException for any difference from the format, the end of the stream and a stream that
/// fails included; what was delivered before stays delivered. What `deliver` throws passes through.
KX_EXPORT void ReadToolboxCache(std::istream& cacheFile,
                                const std::function<void(std::shared_ptr<const ToolboxCacheRecord>)>& deliver);

} // namespace PathManagement
