#include "PackageFolders.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace TolvexPackages {

namespace fs = std::filesystem;

namespace {

void Flush(const fs::path& place) {
    const int descriptor = ::open(place.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
    const bool isDone = descriptor >= 0 && ::fsync(descriptor) == 0;
    const int error = errno;
    if (descriptor >= 0)
        ::close(descriptor);
    if (!isDone && error != EINVAL) // a file system that cannot be told to
        throw fs::filesystem_error("The copy cannot be brought to the disk", place,
                                   std::error_code(error, std::generic_category()));
}

/// Folders get the usual permissions: one that may not be written could be neither filled nor removed later.
void CopyTree(const fs::path& source, const fs::path& target) {
    fs::create_directory(target);
    for (const auto& item : fs::recursive_directory_iterator(source)) {
        const fs::path place = target / item.path().lexically_relative(source);
        if (item.is_symlink())
            fs::copy_symlink(item.path(), place);
        else if (item.is_directory())
            fs::create_directory(place);
        else
            fs::copy_file(item.path(), place); // refuses what is no file
    }
}

} // namespace

void CopyPackageFolder(const fs::path& source, const fs::path& target) {
    CopyTree(source, target);
    for (const auto& item : fs::recursive_directory_iterator(target)) {
        if (!item.is_symlink())
            Flush(item.path());
    }
    Flush(target);
    Flush(target.parent_path());
}

void RemovePackageFolder(const fs::path& folder) {
    const fs::path aside = folder.parent_path() / ("." + folder.filename().native() + ".removed");
    fs::remove_all(aside); // of an earlier attempt
    std::error_code error;
    fs::rename(folder, aside, error);
    if (error && error != std::errc::no_such_file_or_directory)
        throw fs::filesystem_error("The package cannot be removed", folder, error);
    fs::remove_all(aside);
}

} // namespace TolvexPackages
