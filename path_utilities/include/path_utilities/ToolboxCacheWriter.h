#pragma once

#include "path_interfaces/IPathEntry.h"
#include "path_interfaces/ToolboxCacheExceptions.h"

#include <iosfwd>
#include <string>

namespace PathManagement {

/// A manipulator, as std::boolalpha is: on this stream names that the format cannot carry are refused. On others they
/// are written as they are.
KX_EXPORT std::ostream& refuseNamesThatBreakTheFormat(std::ostream& cacheFile);

/// Writes one path cache file. Each top-level folder goes out as soon as it is given. For one thread.
class KX_EXPORT ToolboxCacheWriter {
public:
    /// Writes the first line, with the local time. `cacheRoot` is canonical; the stream outlives the writer.
    ToolboxCacheWriter(std::ostream& cacheFile, Tolvex::CanonicalAbsoluteIRI cacheRoot);

    /// Writes a folder below the cache root, its child folders and files. Throws UnableToSaveToolboxCacheException for
    /// a stream that fails, and for a name that this stream refuses.
    void Write(const IPathEntry& topLevelFolder);

    /// Writes the last line and flushes. Throws UnableToSaveToolboxCacheException for a stream that fails. Without it
    /// the file is not whole.
    void Close();

private:
    void WriteFolder(const IPathEntry& entry, std::size_t depth);
    void WriteFiles(const IPathEntry& entry, std::size_t depth);
    void Append(ustring_view name, const IPathEntry& entry);
    void Flush();
    template <class Output>
    void DemandSuccess(const Output& output, const char* refusal);

    std::ostream& cacheFile;
    Tolvex::CanonicalAbsoluteIRI cacheRoot;
    std::string text; // what is not written yet
};

} // namespace PathManagement
