#pragma once

#include "foundation/messages/Exceptions.h"

namespace PathManagement {

/// The manager's mutability policy refuses the change: nothing was changed and nothing published.
class KX_EXPORT PathAlterationNotSupportedException : public Tolvex::MessageIdentifierException {
public:
    PathAlterationNotSupportedException()
        : MessageIdentifierException({"TOLVEX:tpath", "PathAlterationNotSupported", {}}) {}
};

/// A change of the path was started from inside a change: nothing was changed and nothing published, and the running
/// change goes on.
class KX_EXPORT RecursivePathChangeException : public Tolvex::MessageIdentifierException {
public:
    RecursivePathChangeException() : MessageIdentifierException({"TOLVEX:tpath", "UnableToModifyTolvexpath", {}}) {}
};

} // namespace PathManagement
