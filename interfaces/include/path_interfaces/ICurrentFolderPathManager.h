#pragma once

#include "path_interfaces/CurrentFolderMemento.h"
#include "path_interfaces/CurrentFolderPolicy.h"
#include "path_interfaces/RefreshType.h"

#include <boost/function.hpp>

#include <memory>
#include <optional>
#include <utility>

namespace PathManagement {

/// Keeps the path of the current folder, which stands in front of what the user has set. The getters and CreateMemento
/// may be called from any thread; whoever changes something serialises the rest. The order of the operations is the
/// binary contract between modules.
class ICurrentFolderPathManager {
public:
    using Component = std::optional<TolvexComponents::ComponentIdentifier>;
    /// Takes the path and the component that were current before.
    using CurrentFolderChangedCallback = boost::function<void(const std::shared_ptr<const IPath>&, const Component&)>;

    virtual ~ICurrentFolderPathManager() = default;

    /// The component in which the current folder lies.
    [[nodiscard]] virtual Component GetCurrentFolderComponent() const = 0;

    /// The current folder's path: one main entry, none, or the component's own path. Never null.
    [[nodiscard]] virtual std::shared_ptr<const IPath> GetCurrentFolderPath() const = 0;

    /// As above, with the entry of `mainPath` where the current folder stands on it as a main folder, so that both
    /// share one entry.
    [[nodiscard]] virtual std::shared_ptr<const IPath> GetCurrentFolderPath(const IPath& mainPath) const = 0;

    /// Has `callback` called after every change of the current folder, as long as this manager lives.
    virtual void ConnectToCurrentFolderChanged(CurrentFolderChangedCallback callback) = 0;

    /// To be called when the registry of components has changed: another component counts as another folder.
    virtual void UpdateCurrentFolderComponent() = 0;

    /// Makes the current folder's entry again where it is out of date; with any type but the first its entries are
    /// marked as changed before. Gives the entries that went and those that came. Calls no callback.
    virtual std::pair<PathEntryVector, PathEntryVector> RequestRefresh(RefreshType type) = 0;

    /// Null when there is no current folder.
    [[nodiscard]] virtual std::shared_ptr<CurrentFolderMemento> CreateMemento() const = 0;

    /// Goes back to an earlier state of the same folder; a memento of another folder is ignored. Calls no callback.
    virtual void RestoreMemento(const CurrentFolderMemento& memento) = 0;
};

/// Makes current-folder path managers.
class ICurrentFolderPathManagerFactory {
public:
    virtual ~ICurrentFolderPathManagerFactory() = default;

    /// One that tracks the process's working folder, or, for any value but the first, one without a folder. Throws
    /// Tolvex::StorageError when the working folder is gone.
    [[nodiscard]] virtual std::unique_ptr<ICurrentFolderPathManager> Create(CurrentFolderPolicy policy) const = 0;
};

} // namespace PathManagement
