#pragma once

#include "foundation/storage/Clock.h"

#include <cstdint>

namespace Tolvex {

/// What a folder looked like at one moment, to be compared with a later look. Stamps are the status-change time, which
/// no program sets back, and are compared for equality only.
struct ChangeMark {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    FileTime changed{};
    /// False when the stamp was so young when the mark was taken that a later change may carry the same one. Such a
    /// mark proves nothing: the folder counts as changed until it was looked at again. (Version-control indexes call
    /// such entries "racily clean".)
    bool settled = false;
    /// False when there was no readable folder.
    bool present = false;
    /// True for a mark that was not taken of the folder: see AsOf.
    bool isOfTimeOnly = false;

    /// A mark for what was known to be true of a folder at a moment, without a look at it, made at the time `now`. A
    /// folder that was changed since then, or up to two seconds before (the coarsest stamps there are, FAT's), differs
    /// from it. It knows no folder but a time: one that is put in the folder's place differs only when it is as young.
    /// So the first mark taken afterwards that does not differ should take its place. A moment still to come proves
    /// nothing.
    [[nodiscard]] static ChangeMark AsOf(FileTime moment, FileTime now) noexcept {
        return {0, 0, moment - std::chrono::seconds(2), moment <= now, true, true};
    }

    /// True when `later`, a mark taken of the same folder afterwards, proves that nothing changed in between.
    [[nodiscard]] bool ProvesUnchanged(const ChangeMark& later) const noexcept {
        if (!present || !later.present)
            return present == later.present;
        if (isOfTimeOnly)
            return settled && later.changed < changed;
        return settled && device == later.device && inode == later.inode && changed == later.changed;
    }
};

} // namespace Tolvex
