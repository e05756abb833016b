#include "foundation/storage/StorageError.h"

namespace Tolvex {
namespace {

const char* GetKey(StorageFailure failure) {
    switch (failure) {
    case StorageFailure::missing:
    case StorageFailure::notAFolder:
        return "nameNonexistentOrNotADirectory";
    case StorageFailure::permissionDenied:
        return "directoryPermissionDenied";
    case StorageFailure::invalidLocation:
        return "invalidLocation";
    case StorageFailure::accessFailure:
        break;
    }
    return "directoryAccessFailure";
}

MessageIdentifier MakeMessage(StorageFailure failure, const AbsoluteIRI& location, ustring&& systemText) {
    MessageIdentifier message{"TOLVEX:tpath", GetKey(failure), {ustring(location.getPath())}};
    if (failure == StorageFailure::accessFailure)
        message.arguments.push_back(std::move(systemText));
    return message;
}

} // namespace

StorageError::StorageError(StorageFailure failure, AbsoluteIRI location, ustring systemText)
    : MessageIdentifierException(MakeMessage(failure, location, std::move(systemText))), failure(failure),
      location(std::move(location)) {}

StorageError::StorageError(ustring unusableText)
    : MessageIdentifierException({"TOLVEX:tpath", GetKey(StorageFailure::invalidLocation), {std::move(unusableText)}}),
      failure(StorageFailure::invalidLocation) {}

StorageError::~StorageError() = default;

} // namespace Tolvex
