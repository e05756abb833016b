#include "SystemFailure.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

namespace Tolvex {
namespace {

struct Meaning {
    int errorNumber;
    StorageFailure failure;
};

constexpr std::array meanings{
    Meaning{ENOENT, StorageFailure::missing},         Meaning{ELOOP, StorageFailure::missing},
    Meaning{ENOTDIR, StorageFailure::notAFolder},     Meaning{EACCES, StorageFailure::permissionDenied},
    Meaning{EPERM, StorageFailure::permissionDenied}, Meaning{ENAMETOOLONG, StorageFailure::invalidLocation},
    Meaning{EINVAL, StorageFailure::invalidLocation},
};

} // namespace

StorageError MakeStorageError(int errorNumber, const AbsoluteIRI& location) {
    const auto* const known = std::find_if(meanings.begin(), meanings.end(), [errorNumber](const Meaning& meaning) {
        return meaning.errorNumber == errorNumber;
    });
    if (known != meanings.end())
        return StorageError(known->failure, location);
    const auto systemText = FromUtf8(std::generic_category().message(errorNumber));
    return StorageError(StorageFailure::accessFailure, location, systemText);
}

} // namespace Tolvex
