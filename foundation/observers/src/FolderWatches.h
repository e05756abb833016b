#pragma once

#include "ObservedFolder.h"
#include "foundation/observers/IFileFolderObserverFactory.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Tolvex {

/// What the watches tell. Called from inside the operations of IFolderWatches.
class IWatchListener {
public:
    virtual ~IWatchListener() = default;

    /// Names came to the folder or left it.
    virtual void OnChanged(ObservedFolder& folder) noexcept = 0;
    /// The folder may not be what it was; its watch has to be armed again before it is looked at.
    virtual void OnSuspect(ObservedFolder& folder) noexcept = 0;
    /// Other storage was attached at `path` or detached from it. Told again when it throws.
    virtual void OnMountChanged(std::string_view path) = 0;
};

/// The watches that one factory holds on the folders of the machine's disks. Not safe from several threads: the
/// registry's lock guards it. Folders leave it (Release) before they die.
class IFolderWatches {
public:
    enum class ArmResult {
        settled,     ///< what happens from now on is told
        unsettled,   ///< the folders on the way are changing right now: arm again the next time
        unsuitable,  ///< a watch would not tell everything: the way leads over a link or a folder that may not be read
        noWatchLeft, ///< the system gives no more watches
    };

    virtual ~IFolderWatches() = default;

    /// The kind of the storage that the folder is on, its links taken for names.
    [[nodiscard]] virtual StorageKind GetKind(const AbsoluteIRI& folder) = 0;

    /// Where the links on the way lead.
    struct Way {
        StorageKind kind;
        bool hasLinks;
    };
    /// Touches no remote storage. Without a value while no storage is remote.
    [[nodiscard]] virtual std::optional<Way> Follow(const AbsoluteIRI& folder) = 0;

    /// Watches the folder and what can take it away. A folder that is not settled afterwards holds no watch, unless
    /// it is `unsettled`.
    [[nodiscard]] virtual ArmResult Arm(ObservedFolder& folder) = 0;
    virtual void Release(ObservedFolder& folder) noexcept = 0;

    /// Tells of everything that happened until now. One system call when nothing did. What could not be told for want
    /// of memory, when it throws, is told the next time.
    virtual void Drain() = 0;

    /// Ready to be read when Drain has something to tell; empty when the system gives none.
    [[nodiscard]] virtual std::optional<WaitHandle> GetWaitHandle() = 0;

    /// After `noWatchLeft`: for people, which limit was met last, its value and the cure.
    [[nodiscard]] virtual std::string DescribeShortage() const = 0;
};

/// The disk's watches. `listener` and `options` outlive them.
[[nodiscard]] std::unique_ptr<IFolderWatches> CreateDiskWatches(IWatchListener& listener,
                                                                const ObservationOptions& options);

} // namespace Tolvex
