#include "foundation/environment/WorkingFolder.h"

#include "foundation/storage/StorageError.h"

#include "linux/ProcessLinks.h"

namespace Tolvex {

namespace {

StorageFailure GetFailure(const std::error_code& error) {
    if (error == std::errc::no_such_file_or_directory)
        return StorageFailure::missing;
    if (error == std::errc::permission_denied)
        return StorageFailure::permissionDenied;
    return StorageFailure::accessFailure;
}

class ProcessWorkingFolder : public IWorkingFolder {
public:
    [[nodiscard]] AbsoluteIRI get() const override {
        std::error_code error;
        const ustring path = FromUtf8(GetWorkingFolderPath(error));
        AbsoluteIRI folder = path.starts_with(u'/') ? AbsoluteIRI("file", path) : AbsoluteIRI();
        if (error)
            throw StorageError(GetFailure(error), std::move(folder), FromUtf8(error.message()));
        return folder;
    }
};

} // namespace

const IWorkingFolder& GetCurrentWorkingFolder() {
    static const ProcessWorkingFolder workingFolder;
    return workingFolder;
}

} // namespace Tolvex
