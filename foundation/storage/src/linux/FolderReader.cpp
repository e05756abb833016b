#include "FolderReader.h"

#include "../posix/FileDescriptor.h"

#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <sys/stat.h>

namespace Tolvex {
namespace {

/// Room for about 2,000 names: nearly every folder takes one call, and one more that finds nothing left.
constexpr std::size_t bufferSize = 64 * 1024;

/// One for a thread, so that a scan allocates and clears no buffer for each folder.
char* GetBuffer() {
    thread_local const auto buffer = std::make_unique_for_overwrite<char[]>(bufferSize);
    return buffer.get();
}

std::optional<FolderListing::Kind> GetKindOfMode(mode_t mode) {
    if (S_ISREG(mode))
        return FolderListing::Kind::file;
    if (S_ISDIR(mode))
        return FolderListing::Kind::folder;
    return std::nullopt;
}

std::optional<FolderListing::Kind> AskForKind(int folder, const char* name) {
    struct stat state {};
    if (::fstatat(folder, name, &state, 0) != 0)
        return std::nullopt;
    return GetKindOfMode(state.st_mode);
}

/// Sockets, pipes and devices have no kind; neither have links to them, to nothing and in circles.
std::optional<FolderListing::Kind> GetKind(int folder, const dirent64& entry) {
    switch (entry.d_type) {
    case DT_REG:
        return FolderListing::Kind::file;
    case DT_DIR:
        return FolderListing::Kind::folder;
    case DT_LNK:
    case DT_UNKNOWN:
        return AskForKind(folder, entry.d_name);
    default:
        return std::nullopt;
    }
}

void AddEntry(int folder, const dirent64& entry, FolderListing& listing) {
    const std::string_view name = entry.d_name;
    if (name == "." || name == "..")
        return;
    if (const auto kind = GetKind(folder, entry))
        listing.AddUtf8(name, *kind);
}

} // namespace

int ReadFolder(int descriptor, FolderListing& listing) {
    char* const buffer = GetBuffer();
    for (;;) {
        const auto filled = RetryInterrupted([&] { return ::getdents64(descriptor, buffer, bufferSize); });
        if (filled <= 0)
            return filled == 0 ? 0 : errno;
        for (ssize_t offset = 0; offset < filled;) {
            const auto& entry = *reinterpret_cast<const dirent64*>(buffer + offset);
            AddEntry(descriptor, entry, listing);
            offset += entry.d_reclen;
        }
    }
}

} // namespace Tolvex
