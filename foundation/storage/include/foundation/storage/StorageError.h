#pragma once

#include "foundation/messages/Exceptions.h"
#include "foundation/storage/AbsoluteIRI.h"

namespace Tolvex {

/// Why a folder could not be opened or listed.
enum class StorageFailure {
    missing,    ///< nothing there, or a link that leads nowhere or in circles
    notAFolder, ///< something else is there
    permissionDenied,
    invalidLocation, ///< the name cannot name a folder of this storage system
    accessFailure,   ///< the system refused for another reason
};

/// Thrown by storage systems and folders. Carries the folder message of component "TOLVEX:tpath" that tells people
/// about it (`nameNonexistentOrNotADirectory`, `directoryPermissionDenied`, `invalidLocation`,
/// `directoryAccessFailure`), with the folder's path as first argument and, for an access failure, the system's own
/// words as second.
class KX_EXPORT StorageError : public MessageIdentifierException {
public:
    StorageError(StorageFailure failure, AbsoluteIRI location, ustring systemText = {});
    /// For a text that names no location at all (`invalidLocation`); the message carries the text.
    explicit StorageError(ustring unusableText);
    ~StorageError() override;
    [[nodiscard]] StorageFailure GetFailure() const noexcept { return failure; }
    [[nodiscard]] const AbsoluteIRI& GetLocation() const noexcept { return location; }

private:
    StorageFailure failure;
    AbsoluteIRI location;
};

} // namespace Tolvex
