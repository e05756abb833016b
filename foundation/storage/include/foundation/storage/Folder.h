#pragma once

#include "foundation/storage/CanonicalAbsoluteIRI.h"
#include "foundation/storage/ChangeMark.h"
#include "foundation/storage/FolderListing.h"
#include "foundation/storage/PathComparator.h"

#include <memory>

namespace Tolvex {

/// An open folder of a storage system. For one thread at a time.
///
/// A folder on a disk holds one file descriptor while it lives, and a process has few of them: whoever walks a tree
/// lets go of a folder, or at least keeps no long chain of them, before going down.
///
/// The change mark is taken when the folder is opened, before it can be listed: a change between the two is seen by
/// whoever compares the mark later.
class KX_EXPORT Folder {
public:
    virtual ~Folder();

    /// The folder's one name, links resolved. Throws StorageError when the system cannot tell.
    [[nodiscard]] virtual CanonicalAbsoluteIRI getCanonicalLocation() const = 0;

    [[nodiscard]] virtual const PathComparator& getPathComparator() const = 0;

    [[nodiscard]] virtual const ChangeMark& getChangeMark() const = 0;

    /// Replaces `listing` by the names of the files and folders here. Links count as what they lead to; what is neither
    /// file nor folder, and links that lead nowhere, are left out. Throws StorageError.
    virtual void list(FolderListing& listing) const = 0;

    /// Opens the folder `name` in here, following it when it is a link. Throws StorageError.
    [[nodiscard]] virtual std::unique_ptr<Folder> openChild(ustring_view name) const = 0;
};

} // namespace Tolvex
