#pragma once

#include "foundation/observers/IFileFolderObserver.h"
#include "foundation/storage/StorageSystem.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Tolvex {

/// How closely a folder is watched.
enum class ObservationLevel : std::uint32_t {
    none = 0,         ///< only the mark taken when the observer was made; changes are not looked for
    timeCheck = 1,    ///< the folder's stamp is looked at whenever the observer is asked
    notification = 2, ///< the kernel tells; a time check where it cannot
};

/// How folders on remote storage are checked for change, whatever their level (but for `none`): other machines change
/// them, and the kernel does not tell. `reload`: they count as changed whenever they are asked; `timecheckDir`: by time
/// check; `none`: they are not looked at.
enum class RemotePathPolicy : std::uint32_t { reload = 0, timecheckDir = 1, none = 2 };

/// When the warning about exhausted change handles (kernel watches) is shown: `always`: each time somebody asks for
/// changes and meets the limit; `once` for a factory; or `never`.
enum class ChangeHandleWarning : std::uint32_t { always = 0, once = 1, never = 2 };

/// A point in the history of changes that one observer factory has seen.
struct ChangeToken {
    std::uint64_t position = 0;
};

/// What is known to have changed since a token.
struct ChangeReport {
    ChangeToken now;
    /// Folders with observers that changed since; each once, in the order of their last report.
    std::vector<CanonicalAbsoluteIRI> changed;
    /// True when the report cannot speak for every observer, for want of memory: they have to be asked one by one.
    bool askEachObserver = true;
    /// True when some folders had to be looked at for the report, since nothing tells of them: who waits for the wait
    /// handle does not hear of their changes.
    bool hasLookedAtFolders = true;
};

/// Something of the system's to wait for, beside other such things: a descriptor for poll() on Linux.
using WaitHandle = std::intptr_t;

/// What a factory takes from its system.
struct ObservationOptions {
    /// No more kernel watches than this. A folder takes one, and those above it one each for all below. Without a
    /// value: half of those that the system gives to one user when the first is taken, so that the user's other
    /// programs, and a second one like this, get theirs.
    std::optional<std::size_t> watchLimit;
    /// What is here and below, also by way of a link, counts as remote, beside what the system says is.
    std::vector<AbsoluteIRI> remoteFolders;
    /// When more events than this have come since the last reading, the rest is not read one by one: it is taken for
    /// lost, and each folder is looked at.
    std::size_t eventLimit = std::numeric_limits<std::size_t>::max();
};

/// Makes observers and answers for all of them at once. One for a storage system. Safe from any thread.
///
/// Of folders on the machine's disks the kernel tells; observers of folders that it does not tell of look at them by
/// time check: other schemes, remote storage, systems of virtual files, file systems that ignore case, what is reached
/// over a link, ancestors that may not be read, and what there is no watch left for. A watch is armed when its observer
/// is first asked, then the folder is looked at: making observers and setting levels touches no folder.
///
/// Not seen by notification, but by the next look for whatever reason: an ancestor that takes away the right to pass.
/// Not seen at all: what a link in the folder leads to (the link itself is one of the folder's names).
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

    /// Looks at these folders once, whatever their levels: observers that this refutes have changed from then on.
    /// Remote folders by their policy.
    virtual void lookAt(std::span<const CanonicalAbsoluteIRI> folders) = 0;

    /// "Has anything changed since, and what?", answered once for all observers that are alive. Sees every change made
    /// by any process of this machine before the call, as far as `askEachObserver` is false. Costs what changed, and a
    /// look at each folder that no watch tells of.
    [[nodiscard]] virtual ChangeReport getChangesSince(ChangeToken token) = 0;

    [[nodiscard]] virtual RemotePathPolicy getRemotePathPolicy() const noexcept = 0;
    virtual void setRemotePathPolicy(RemotePathPolicy policy) noexcept = 0;
    [[nodiscard]] virtual ChangeHandleWarning getChangeHandleWarning() const noexcept = 0;
    virtual void setChangeHandleWarning(ChangeHandleWarning warning) noexcept = 0;

    /// The warning to be shown: which limit was met, its value and the cure, in English; empty when there is none.
    /// Handed out once. It is also written to the log channel "searchpath::observers", with severity 1.
    [[nodiscard]] virtual std::string takeChangeHandleWarning() = 0;

    /// Becomes ready to be read when the kernel has told of something; then getChangesSince says what that means, maybe
    /// nothing. It stays ready until it is asked. So who waits asks first, then waits, and misses nothing; other
    /// questions to the factory or its observers may take up what was told, too. Never read or closed by the caller,
    /// good as long as the factory. Empty when there is none: other storage than disks, or a system short of
    /// descriptors.
    [[nodiscard]] virtual std::optional<WaitHandle> getWaitHandle() = 0;
};

/// The one observer factory of a storage system; made on first use. The reference is good as long as the caller, or
/// somebody else, refers to the storage system, which the factory itself does not keep alive. Observers may outlive
/// both; one that is looked after then finds a folder that was there to be gone, hence changed.
[[nodiscard]] KX_EXPORT IFileFolderObserverFactory& GetFileFolderObserverFactory(const StorageSystemReference& storage);

/// A further factory, with observers of its own, for hosts that share the kernel's watches with others and for tests.
/// Refers to the storage system as the one factory does.
[[nodiscard]] KX_EXPORT std::unique_ptr<IFileFolderObserverFactory>
CreateFileFolderObserverFactory(const StorageSystemReference& storage, ObservationOptions options = {});

} // namespace Tolvex
