#pragma once

#include "foundation/messages/Exceptions.h"

namespace TolvexArrays {

/// An error of the environment's language: raised in a built-in function, it ends the call and reaches the script under
/// its message identifier.
class KX_EXPORT HostError : public Tolvex::MessageIdentifierException {
public:
    using MessageIdentifierException::MessageIdentifierException;
    ~HostError() override;
};

/// Throws HostError. No output of the call is used then.
[[noreturn]] KX_EXPORT void RaiseHostError(Tolvex::MessageIdentifier message);

// The standard errors of a call: component "TOLVEX:arguments", the key is what stands behind "error_".
[[noreturn]] KX_EXPORT void error_maxlhs(); ///< more outputs are requested than the function has
[[noreturn]] KX_EXPORT void error_maxrhs(); ///< more inputs than it takes
[[noreturn]] KX_EXPORT void error_minrhs(); ///< fewer inputs than it needs

} // namespace TolvexArrays
