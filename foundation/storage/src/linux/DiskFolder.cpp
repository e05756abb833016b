#include "DiskFolder.h"

#include "../PathText.h"
#include "../posix/SystemFailure.h"
#include "ChangeMarkReader.h"
#include "DiskPaths.h"
#include "FolderOpening.h"
#include "FolderReader.h"

namespace Tolvex {
namespace {

/// Costs: opening, one look at the open folder, listing, closing. Nothing is asked about its files, nor about its own
/// name unless a link was met on the way.
class DiskFolder final : public Folder {
public:
    DiskFolder(OpenedFolder&& opened, AbsoluteIRI spelled, const IClock& clock)
        : descriptor(std::move(opened.descriptor)), location(std::move(spelled)), isCanonical(opened.linkFree),
          clock(clock) {
        const auto [taken, rules] = ReadMarkOfDescriptor(descriptor.Get(), clock);
        mark = taken;
        comparator = PathComparator(rules.ignoresCase);
    }

    [[nodiscard]] CanonicalAbsoluteIRI getCanonicalLocation() const override {
        if (!isCanonical)
            ResolveLocation();
        return CanonicalAbsoluteIRI::fromCanonical(location);
    }

    [[nodiscard]] const PathComparator& getPathComparator() const override { return comparator; }

    [[nodiscard]] const ChangeMark& getChangeMark() const override { return mark; }

    void list(FolderListing& listing) const override {
        listing.Clear();
        if (listedBefore)
            ::lseek(descriptor.Get(), 0, SEEK_SET);
        listedBefore = true;
        if (const int error = ReadFolder(descriptor.Get(), listing); error != 0)
            throw MakeStorageError(error, location);
    }

    [[nodiscard]] std::unique_ptr<Folder> openChild(ustring_view name) const override {
        if (!IsChildName(name))
            throw StorageError(StorageFailure::invalidLocation, location);
        auto opened = OpenChildFolder(descriptor.Get(), ToUtf8(name).c_str());
        opened.linkFree = opened.linkFree && isCanonical;
        auto child = location.getChild(name);
        if (!opened.descriptor.IsOpen())
            throw MakeStorageError(opened.error, child);
        return std::make_unique<DiskFolder>(std::move(opened), std::move(child), clock);
    }

private:
    void ResolveLocation() const {
        const auto path = FindPathOfOpenFolder(descriptor.Get(), location.getPath(), mark);
        if (!path)
            throw StorageError(StorageFailure::missing, location);
        location = AbsoluteIRI(location.getScheme(), *path);
        isCanonical = true;
    }

    FileDescriptor descriptor;
    mutable AbsoluteIRI location; // as spelled, until it is known to be canonical
    mutable bool isCanonical;
    mutable bool listedBefore = false;
    const IClock& clock;
    ChangeMark mark;
    PathComparator comparator;
};

/// Where every name is a real folder, cleaning by text says what the system does.
AbsoluteIRI Clean(const AbsoluteIRI& location) {
    const auto path = location.getPath();
    if (path.find(u"/.") == ustring_view::npos)
        return location;
    return AbsoluteIRI(location.getScheme(), CleanPath(path));
}

} // namespace

std::unique_ptr<Folder> OpenDiskFolder(const AbsoluteIRI& location, const IClock& clock) {
    auto opened = OpenFolderByPath(ToUtf8(location.getPath()));
    if (!opened.descriptor.IsOpen())
        throw MakeStorageError(opened.error, location);
    auto spelled = opened.linkFree ? Clean(location) : location;
    return std::make_unique<DiskFolder>(std::move(opened), std::move(spelled), clock);
}

} // namespace Tolvex
