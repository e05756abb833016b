#pragma once

#include "../ObservedFolder.h"

#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Tolvex {

/// Where which storage is attached, as the system lists it: tells what kind of storage a path is on without touching
/// that storage, which may be far away and not answer.
class MountTable {
public:
    MountTable();

    /// The kind of the storage that `path` is on, or would be if it existed. Links are taken for names.
    [[nodiscard]] StorageKind GetKind(std::string_view path) const;

    /// Whether any storage is.
    [[nodiscard]] bool HasRemote() const noexcept;

    /// Readable with "priority" when the table has changed since it was last read (see poll); -1 when the system
    /// has none.
    [[nodiscard]] int GetNumber() const noexcept;

    /// Reads the table again; the places where something was attached or detached since the last time.
    [[nodiscard]] std::vector<std::string> Update();

private:
    struct Mount {
        std::string number; // the system's, never given twice at one place in a row
        StorageKind kind = StorageKind::silent;
        friend bool operator==(const Mount&, const Mount&) = default;
    };
    using Mounts = std::map<std::string, Mount, std::less<>>;
    struct FileCloser {
        void operator()(std::FILE* opened) const noexcept { std::fclose(opened); }
    };

    [[nodiscard]] Mounts Read() const;
    static void AddLine(Mounts& read, std::string_view line);

    std::unique_ptr<std::FILE, FileCloser> file; // may be null
    Mounts mounts;                               // by the path they are attached at
};

} // namespace Tolvex
