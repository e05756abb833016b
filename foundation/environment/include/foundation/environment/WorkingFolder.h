#pragma once

#include "foundation/storage/AbsoluteIRI.h"

namespace Tolvex {

/// The host's current working folder. Safe from any thread.
class IWorkingFolder {
public:
    virtual ~IWorkingFolder() = default;

    /// The folder as the system spells it. Throws StorageError when the process's folder is gone.
    [[nodiscard]] virtual AbsoluteIRI get() const = 0;
};

/// The working folder of this process.
[[nodiscard]] KX_EXPORT const IWorkingFolder& GetCurrentWorkingFolder();

} // namespace Tolvex
