#pragma once

namespace Tolvex {

/// Watches one folder for its owner, an entry of the path. Starts from the mark taken before the folder was listed.
class IFileFolderObserver {
public:
    virtual ~IFileFolderObserver() = default;

    /// True when the folder may have changed since the observer's mark; stays true. Safe from any thread; never throws:
    /// what cannot be looked at counts as changed when it could be looked at before.
    [[nodiscard]] virtual bool hasChanged() const noexcept = 0;

    /// True when the observer sees changes of the folders below, too. Constant for one observer.
    [[nodiscard]] virtual bool observesChildFoldersToo() const noexcept = 0;
};

} // namespace Tolvex
