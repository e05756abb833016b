#include "PackageFolders.h"

#include "../FolderNesting.h"
#include "foundation/components/PackageError.h"

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

/// A copy has only what lies in the package: another link would lead elsewhere, or nowhere, from there.
void CopyLink(const fs::path& link, const fs::path& place, const fs::path& root) {
    const fs::path target = fs::read_symlink(link);
    const fs::path end = fs::weakly_canonical(link.parent_path() / target);
    if (target.is_absolute() || !IsSameOrBelow(end, root))
        throw PackageError({link.native(), 0,
                            "is a link that leads out of a copy, to '" + target.native() +
                                "': make it relative, to what lies in the package"});
    fs::copy_symlink(link, place);
}

/// Folders get the usual permissions: one that may not be written could be neither filled nor removed later.
/// By hand, since the failure of a recursive iterator does not name the folder.
void CopyTree(const fs::path& source, const fs::path& target, const fs::path& root) {
    fs::create_directory(target);
    for (const auto& item : fs::directory_iterator(source)) {
        const fs::path place = target / item.path().filename();
        if (item.is_symlink())
            CopyLink(item.path(), place, root);
        else if (item.is_directory())
            CopyTree(item.path(), place, root);
        else
            fs::copy_file(item.path(), place); // refuses what is no file
    }
}

} // namespace

void CopyPackageFolder(const fs::path& source, const fs::path& target) {
    CopyTree(source, target, fs::canonical(source));
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
