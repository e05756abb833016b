#include "foundation/environment/WorkingFolder.h"

#include "foundation/storage/StorageError.h"

#include "linux/ProcessLinks.h"

namespace Tolvex {

namespace {

constexpr std::string_view scheme = "file";

StorageFailure GetFailure(const std::error_code& error) {
    if (error == std::errc::no_such_file_or_directory || error == std::errc::too_many_symbolic_link_levels)
        return StorageFailure::missing;
    if (error == std::errc::not_a_directory)
        return StorageFailure::notAFolder;
    if (error == std::errc::permission_denied)
        return StorageFailure::permissionDenied;
    return StorageFailure::accessFailure;
}

class ProcessWorkingFolder : public IWorkingFolder {
public:
    [[nodiscard]] CanonicalAbsoluteIRI get() const override {
        std::error_code error;
        const ustring path = FromUtf8(GetWorkingFolderPath(error));
        AbsoluteIRI folder = path.starts_with(u'/') ? AbsoluteIRI(scheme, path) : AbsoluteIRI();
        if (error)
            throw StorageError(GetFailure(error), std::move(folder), FromUtf8(error.message()));
        return CanonicalAbsoluteIRI::fromCanonical(std::move(folder));
    }
};

} // namespace

const IWorkingFolder& GetCurrentWorkingFolder() {
    static const ProcessWorkingFolder workingFolder;
    return workingFolder;
}

void ChangeCurrentWorkingFolder(const AbsoluteIRI& folder, EventMgr& events) {
    if (folder.getScheme() != scheme)
        throw StorageError(StorageFailure::invalidLocation, folder);
    if (const std::error_code error = SetWorkingFolderPath(ToUtf8(folder.getPath())))
        throw StorageError(GetFailure(error), folder, FromUtf8(error.message()));
    events.Publish(CurrentWorkingFolderChangedEvent(GetCurrentWorkingFolder().get()));
}

} // namespace Tolvex
