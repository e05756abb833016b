#pragma once

#include "foundation/messages/Notification.h"
#include "path_interfaces/CurrentFolderPolicy.h"
#include "path_interfaces/IFolderMonitor.h"
#include "path_interfaces/PathManagerMutabilityPolicy.h"
#include "path_interfaces/PathMemento.h"
#include "path_interfaces/RefreshType.h"

#include <boost/range/any_range.hpp>

#include <memory>
#include <optional>
#include <vector>

namespace PathManagement {

/// Folders in an order, by canonical location; may be walked more than once.
using CanonicalIRIRange = boost::any_range<Tolvex::CanonicalAbsoluteIRI, boost::forward_traversal_tag,
                                           const Tolvex::CanonicalAbsoluteIRI&, std::ptrdiff_t>;

/// Owns the search path of the process: the folders that the user has set, the current folder in front of them, and
/// what follows from both. Every change is announced by three PathChangeEvents and swapped in whole.
///
/// The getters and CreateMemento may be called from any thread at any time and never wait; what they give does not
/// change any more. Everything else is for one thread at a time. The order of the operations is the binary contract
/// between modules.
class IMainSearchPathManager {
public:
    using Components = std::vector<TolvexComponents::ComponentIdentifier>;
    using IRIs = std::vector<Tolvex::CanonicalAbsoluteIRI>;

    virtual ~IMainSearchPathManager() = default;

    /// The current folder's path followed by what the user has set: what is watched.
    [[nodiscard]] virtual std::shared_ptr<const IPath> GetMonitoredPath() const = 0;

    /// GetPath without what only the current folder brought.
    [[nodiscard]] virtual std::shared_ptr<const IPath> GetSecondaryPath() const = 0;

    /// Reads anew what is out of date and installs the result; changes nothing when nothing is. Sees every change that
    /// any process of this machine made before the call. A folder whose last change is as young as the disk's clock can
    /// tell is read again to be sure, whether more has changed or not. Called while a change is announced it is made
    /// after that.
    virtual void RefreshPath(RefreshType type) = 0;

    /// Sets the path. Entries that may not stand on it are left out and told in `problems`, a private folder that
    /// stands in front as a main folder among them; of two entries of one folder the first stays; null entries are
    /// passed over. Throws PathAlterationNotSupportedException and RecursivePathChangeException.
    virtual void SetPathEntries(std::vector<std::shared_ptr<const IPathEntry>> entries,
                                Tolvex::Notification& problems) = 0;

    /// Sets the path by locations. Folders that are on it keep their entries, others are read. Those that do not exist
    /// or cannot be read are left out and told in `problems`; then as above.
    virtual void SetPathEntries(const CanonicalIRIRange& folders, Tolvex::Notification& problems) = 0;

    /// Sets the path to the main entries of `path`; what is left out is not told. REQUIRES: `path` is not null.
    virtual void SetPath(std::shared_ptr<const IPath> path) = 0;

    /// The path that look-ups use: the current folder's path and what the user has set, no folder twice.
    [[nodiscard]] virtual std::shared_ptr<const IPath> GetPath() const = 0;

    [[nodiscard]] virtual IFolderMonitor& GetFolderMonitor() const = 0;

    /// Sets a policy until the token is dropped, which brings back the one before. Tokens are dropped in the reverse
    /// order of their making, and before the manager is.
    [[nodiscard]] virtual std::shared_ptr<void> PushMutabilityPolicy(PathManagerMutabilityPolicy policy) = 0;

    virtual void SetMutabilityPolicy(PathManagerMutabilityPolicy policy) = 0;

    [[nodiscard]] virtual std::optional<TolvexComponents::ComponentIdentifier> GetCurrentFolderComponent() const = 0;

    /// The packages whose root folders the user has set. Never null.
    [[nodiscard]] virtual std::shared_ptr<const Components> GetPathComponents() const = 0;

    /// Says whether there is a current folder; does nothing when it is so already.
    virtual void SetCurrentFolderPolicy(CurrentFolderPolicy policy) = 0;

    /// The folders that the user has set, in order; setting them again leaves the path as it is. Never null.
    [[nodiscard]] virtual std::shared_ptr<const IRIs> GetPathIRIs() const = 0;

    [[nodiscard]] virtual std::shared_ptr<const PathMemento> CreateMemento() const = 0;

    /// Makes the paths again from the present entries and installs them, whatever changed, and asks the folder monitor
    /// again how closely each folder is to be watched.
    virtual void RebuildPath() = 0;
};

} // namespace PathManagement
