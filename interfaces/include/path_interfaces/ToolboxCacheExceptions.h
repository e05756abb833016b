#pragma once

#include "foundation/messages/Exceptions.h"

namespace PathManagement {

/// A path cache file that is not in the one format that is read. `what()` says at which byte and what was expected.
class KX_EXPORT ToolboxCacheWrongFormatException : public Tolvex::InternalException {
public:
    using InternalException::InternalException;
};

/// A path cache that could not be saved; an earlier file is still in place. `what()` says why.
class KX_EXPORT UnableToSaveToolboxCacheException : public Tolvex::InternalException {
public:
    using InternalException::InternalException;
};

} // namespace PathManagement
