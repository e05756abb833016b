#pragma once

#include "path_interfaces/ToolboxCacheExceptions.h"
#include "path_utilities/ToolboxCacheRecord.h"

#include <functional>
#include <iosfwd>
#include <memory>

namespace PathManagement {

/// Reads a path cache file in one pass, a top-level folder at a time; keeps none of them. For one thread.
class KX_EXPORT ToolboxCacheReader {
public:
    /// The stream is read by nobody else and outlives the reader.
    explicit ToolboxCacheReader(std::istream& cacheFile);
    ~ToolboxCacheReader();
    ToolboxCacheReader(const ToolboxCacheReader&) = delete;
    ToolboxCacheReader& operator=(const ToolboxCacheReader&) = delete;

    /// The next top-level folder, in file order, as soon as its element is complete; null behind the last one, when the
    /// closing root element was read and nothing behind it. Throws ToolboxCacheWrongFormatException for any difference
    /// from the format, the end of the stream and a stream that fails included; nothing can be read afterwards.
    [[nodiscard]] std::shared_ptr<const ToolboxCacheRecord> Next();

private:
    class Parser;
    std::unique_ptr<Parser> parser;
};

/// Calls `deliver` with each top-level folder of a file as ToolboxCacheReader gives it. Throws as that does; what was
/// delivered before stays delivered. What `deliver` throws passes through.
KX_EXPORT void ReadToolboxCache(std::istream& cacheFile,
                                const std::function<void(std::shared_ptr<const ToolboxCacheRecord>)>& deliver);

} // namespace PathManagement
