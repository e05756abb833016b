#pragma once

#include "foundation/observers/IFileFolderObserver.h"
#include "foundation/storage/StorageSystem.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace Tolvex {

/// How closely a folder is watched.
enum class ObservationLevel : std::uint32_t {
    none = 0,         ///< only the mark taken when the observer was made; changes are not looked for
    timeCheck = 1,    ///< the folder's stamp is looked at whenever the observer is asked
    notification = 2, ///< the kernel tells; a time check where it cannot
};

/// How folders on remote storage are checked for change.
enum class RemotePathPolicy : std::uint32_t { reload = 0, timecheckDir = 1, none = 2 };

/// When the warning about exhausted change handles (kernel watches) is shown.
enum class ChangeHandleWarning : std::uint32_t { always = 0, once = 1, never = 2 };

/// A point in the history of changes that one observer factory has seen.
struct ChangeToken {
    std::uint64_t position = 0;
};

/// What is known to have changed since a token.
struct ChangeReport {
    ChangeToken now;
    /// Folders that were reported; each once.
    std::vector<CanonicalAbsoluteIRI> changed;
    /// True when the report cannot speak for every observer (time checks, lost notifications): the others have
    /// to be asked one by one.
    bool askEachObserver = true;
};

/// Makes observers and answers for all of them at once. One for a storage system. Safe from any thread.
class IFileFolderObserverFactory {
public:
    virtual ~IFileFolderObserverFactory() = default;

    /// An observer that starts from `mark`, the mark of the opened folder (or one that is not `present`, for a folder
    /// that is missing and may come).
    [[nodiscard]] virtual std::unique_ptr<IFileFolderObserver>
    createObserver(const CanonicalAbsoluteIRI& folder, const ChangeMark& mark, ObservationLevel level) = 0;

    /// Changes the level of the live observers of a folder: entries are made before their folders are on the monitored
    /// path, so the level given at creation is only the first one.
    virtual void setObservationLevel(const CanonicalAbsoluteIRI& folder, ObservationLevel level) = 0;

    /// "Has anything changed since, and what?", answered once for all observers. Sees every change made by any process
    /// of this machine before the call, as far as `askEachObserver` is false.
    [[nodiscard]] virtual ChangeReport getChangesSince(ChangeToken token) = 0;

    [[nodiscard]] virtual RemotePathPolicy getRemotePathPolicy() const noexcept = 0;
    virtual void setRemotePathPolicy(RemotePathPolicy policy) noexcept = 0;
    [[nodiscard]] virtual ChangeHandleWarning getChangeHandleWarning() const noexcept = 0;
    virtual void setChangeHandleWarning(ChangeHandleWarning warning) noexcept = 0;
};

/// The one observer factory of a storage system; made on first use. The reference is good as long as the caller, or
/// somebody else, refers to the storage system, which the factory itself does not keep alive. Observers may outlive
/// both; one that is looked after then finds a folder that was there to be gone, hence changed.
[[nodiscard]] KX_EXPORT IFileFolderObserverFactory& GetFileFolderObserverFactory(const StorageSystemReference& storage);

} // namespace Tolvex
