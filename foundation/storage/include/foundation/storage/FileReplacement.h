#pragma once

#include "foundation/storage/Clock.h"
#include "foundation/text/Export.h"

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <memory>

namespace Tolvex {

/// The new contents of a file on the disk, which take the place of the old ones whole or not at all: they are written
/// without a name beside the file and get its name at the end. Whatever ends the process before, a crash or a full disk
/// included, leaves the old file as it was. Of several that replace one file, the last to commit wins. A link is
/// followed: what it leads to is replaced. For one thread.
class KX_EXPORT FileReplacement {
public:
    /// Throws std::filesystem::filesystem_error when nothing can be made in the file's folder, and when the file is
    /// there and no ordinary one.
    explicit FileReplacement(const std::filesystem::path& file);
    ~FileReplacement();
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;

    /// Where the new contents lie, and when they were begun by the clock of whoever keeps that file system's stamps,
    /// which may be another machine.
    struct Beginning {
        std::uint64_t device; ///< as in ChangeMark
        FileTime stamp;
    };
    [[nodiscard]] Beginning GetBeginning() const noexcept;

    /// Where the contents are written to. Fails as streams do.
    [[nodiscard]] std::ostream& GetStream() noexcept;

    /// A stream that reads what was written and flushed, from its beginning. Used before anything more is written.
    [[nodiscard]] std::unique_ptr<std::istream> ReadBack() const;

    /// The modification time that the file gets; that of the last write otherwise.
    void SetModificationTime(FileTime time);

    /// Puts the file in place once all of it has reached the disk. Throws std::filesystem::filesystem_error, and the
    /// old file stays.
    void Commit();

    /// The system's words for the last write that failed; empty when none did.
    [[nodiscard]] std::string GetWriteFailure() const;

private:
    class State;
    std::unique_ptr<State> state;
};

} // namespace Tolvex
