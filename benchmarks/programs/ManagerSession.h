#pragma once

#include "foundation/components/ModularPackageRegistry.h"
#include "search_path/MainSearchPathManagerFactory.h"

#include <span>

namespace KxBenchmarks {

/// A host with a search path manager, which follows the working folder of the process. One a process.
class ManagerSession {
public:
    ManagerSession();
    ManagerSession(const ManagerSession&) = delete;
    ManagerSession& operator=(const ManagerSession&) = delete;

    /// Throws std::runtime_error when a folder is left out: what is measured would not be what it is taken for.
    void SetFolders(std::span<const Tolvex::AbsoluteIRI> folders);

    /// As the environment's change-folder command does it.
    void EnterFolder(const Tolvex::AbsoluteIRI& folder);

    [[nodiscard]] PathManagement::IMainSearchPathManager& GetManager() const noexcept { return *manager; }
    [[nodiscard]] Tolvex::EventMgr& GetEvents() const noexcept { return *events; }

    /// What was set, without the working folder.
    [[nodiscard]] std::shared_ptr<const PathManagement::IPath> GetStoredPath() const;

private:
    const boost::shared_ptr<Tolvex::EventMgr> events;
    TolvexComponents::ModularPackageRegistry packages;
    const std::unique_ptr<PathManagement::IMainSearchPathManager> manager;
};

} // namespace KxBenchmarks
