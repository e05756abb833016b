#pragma once

#include "ObserverRegistry.h"

#include <atomic>

namespace Tolvex {

/// Compares the folder's present mark with the one it started from, whenever it is asked and its level says so. Small:
/// there is one for each folder of the path.
class FileFolderObserver final : public IFileFolderObserver {
public:
    FileFolderObserver(std::shared_ptr<ObserverRegistry> registry, CanonicalAbsoluteIRI folder, const ChangeMark& mark,
                       ObservationLevel level);
    FileFolderObserver(const FileFolderObserver&) = delete;
    FileFolderObserver& operator=(const FileFolderObserver&) = delete;
    ~FileFolderObserver() override;

    [[nodiscard]] bool hasChanged() const noexcept override;
    [[nodiscard]] bool observesChildFoldersToo() const noexcept override { return false; }

    void SetLevel(ObservationLevel newLevel) noexcept { level.store(newLevel, std::memory_order_relaxed); }

private:
    [[nodiscard]] bool LooksChanged() const noexcept;

    const std::shared_ptr<ObserverRegistry> registry;
    const CanonicalAbsoluteIRI folder;
    const ChangeMark mark;
    std::atomic<ObservationLevel> level;
    mutable std::atomic<bool> changed = false; // never goes back
};

} // namespace Tolvex
