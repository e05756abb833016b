#pragma once

#include "foundation/messages/Exceptions.h"
#include "foundation/storage/AbsoluteIRI.h"

namespace PathManagement {

/// A location that lies in no folder and so cannot be that of a file: the root of a storage system, or the empty IRI.
/// Carries the message "TOLVEX:tpath" `noParentFolder` with the location's text.
class KX_EXPORT NoParentIRIException : public Tolvex::MessageIdentifierException {
public:
    explicit NoParentIRIException(const Tolvex::AbsoluteIRI& location)
        : MessageIdentifierException({"TOLVEX:tpath", "noParentFolder", {location.toString()}}) {}
};

/// The one name of a file, which need not exist: its folder's canonical location and its own last name. A file that is
/// a link so keeps its name, as the files of path entries do. A location that ends with "." or ".." has no name of its
/// own and is resolved as a whole. The folder is resolved on the disk as far as it exists, the rest by text; locations
/// of other storage systems by text alone.
///
/// While the host's required context is not active (Tolvex::isRequiredContextActive) the disk is not asked: the
/// location is returned cleaned by text.
///
/// Throws NoParentIRIException, in either case, when there is no folder above. Safe from any thread.
[[nodiscard]] KX_EXPORT Tolvex::AbsoluteIRI PathManagerCanonicalFilePath(const Tolvex::AbsoluteIRI& location);

} // namespace PathManagement
