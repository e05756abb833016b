#pragma once

#include "foundation/events/EventMgr.h"
#include "foundation/storage/CanonicalAbsoluteIRI.h"

#include <utility>

namespace Tolvex {

/// The host's current working folder. Safe from any thread.
class IWorkingFolder {
public:
    virtual ~IWorkingFolder() = default;

    /// The folder as the system spells it, links resolved. Throws StorageError when the process's folder is gone.
    [[nodiscard]] virtual CanonicalAbsoluteIRI get() const = 0;
};

/// The working folder of this process.
[[nodiscard]] KX_EXPORT const IWorkingFolder& GetCurrentWorkingFolder();

/// The working folder was changed, maybe to the one it was before.
class CurrentWorkingFolderChangedEvent {
public:
    explicit CurrentWorkingFolderChangedEvent(CanonicalAbsoluteIRI folder) noexcept : folder(std::move(folder)) {}

    [[nodiscard]] const CanonicalAbsoluteIRI& getNew() const noexcept { return folder; }

private:
    CanonicalAbsoluteIRI folder;
};

/// Makes `folder` the working folder of this process, then publishes CurrentWorkingFolderChangedEvent on `events`, the
/// host's event manager. Throws StorageError, and changes nothing, when the folder cannot be entered; what a handler
/// throws passes through, and the change stands. For one thread at a time: there is one working folder a process.
KX_EXPORT void ChangeCurrentWorkingFolder(const AbsoluteIRI& folder, EventMgr& events);

} // namespace Tolvex
