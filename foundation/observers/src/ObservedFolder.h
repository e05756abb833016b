#pragma once

#include "FileFolderObserver.h"

#include <boost/intrusive/list.hpp>
#include <boost/smart_ptr/intrusive_ref_counter.hpp>

#include <cstdint>
#include <optional>
#include <utility>

namespace Tolvex {

struct WatchNode;

/// What is to be expected of the storage that holds a folder.
enum class StorageKind : std::uint8_t {
    notifying, ///< the kernel tells of every change
    silent,    ///< changes are seen by looking only
    remote,    ///< other machines may change it, and a look may take long
};

struct LookListTag;
struct ChangeListTag;
/// Hooks that leave their list when the folder dies.
template <class Tag>
using FolderHook = boost::intrusive::list_base_hook<boost::intrusive::tag<Tag>,
                                                    boost::intrusive::link_mode<boost::intrusive::auto_unlink>>;

/// A folder that has observers, and what is known about it. Everything but `location` is guarded by the registry's
/// lock.
struct ObservedFolder : FolderHook<LookListTag>,
                        FolderHook<ChangeListTag>,
                        boost::intrusive_ref_counter<ObservedFolder> {
    /// Who has to look before anything can be said about the folder.
    enum class LookRule : std::uint8_t {
        never,  ///< nobody wants to know, or the watch tells
        once,   ///< the watch tells from the next look on; in the list of suspects
        always, ///< there is no watch; in the list of time checks
    };

    /// What is known of links on the way to the folder.
    enum class WayType : std::uint8_t { unknown, direct, linked };

    explicit ObservedFolder(CanonicalAbsoluteIRI location) : location(std::move(location)) {}

    const CanonicalAbsoluteIRI location;
    boost::intrusive::slist<FileFolderObserver, boost::intrusive::constant_time_size<false>> observers;
    WatchNode* node = nullptr; ///< owned by the watches
    std::uint64_t changedAt = 0;
    std::uint32_t suspicions = 0;    ///< counts the reasons to look; a look settles those from before it
    std::optional<StorageKind> kind; ///< none until it matters
    WayType wayType = WayType::unknown;
    LookRule rule = LookRule::never;
    bool isWatched = false;  ///< its watch is armed, or, as long as it is missing, that of a folder above
    bool lacksWatch = false; ///< it should be watched, and no watch was left
};

template <class Tag>
using FolderList = boost::intrusive::list<ObservedFolder, boost::intrusive::base_hook<FolderHook<Tag>>,
                                          boost::intrusive::constant_time_size<false>>;

} // namespace Tolvex
