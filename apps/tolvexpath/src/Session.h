#pragma once

#include "foundation/components/ModularPackageRegistry.h"
#include "foundation/events/EventMgr.h"
#include "path_interfaces/IMainSearchPathManager.h"

#include <memory>
#include <span>

namespace TolvexPath {

/// A search path as an environment has one: its manager, and the host services that the manager stands on. One a
/// process; for one thread.
class Session {
public:
    /// Begins with an empty path. Throws Tolvex::StorageError when the working folder is gone.
    explicit Session(PathManagement::CurrentFolderPolicy policy);

    [[nodiscard]] PathManagement::IMainSearchPathManager& GetManager() noexcept { return *manager; }
    /// Where everything that happens to the path is published.
    [[nodiscard]] Tolvex::EventMgr& GetEvents() noexcept { return *events; }

    /// Sets the path, with progress on a terminal. Gives what was left out and why, in the order of the folders as far
    /// as they could be read.
    [[nodiscard]] Tolvex::Notification SetPath(std::span<const Tolvex::AbsoluteIRI> locations);

    /// Refreshes the path; says so when the system gives no more watches for it.
    void Refresh(PathManagement::RefreshType type);

private:
    boost::shared_ptr<Tolvex::EventMgr> events;
    TolvexComponents::ModularPackageRegistry components;
    std::unique_ptr<PathManagement::IMainSearchPathManager> manager;
};

} // namespace TolvexPath
