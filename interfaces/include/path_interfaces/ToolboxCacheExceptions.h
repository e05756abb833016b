#pragma once

#include "foundation/messages/Exceptions.h"

#include <string>
#include <string_view>
#include <utility>

namespace PathManagement {

/// A path cache file that is not in the one format that is read. `what()` says at which byte and what was expected.
class KX_EXPORT ToolboxCacheWrongFormatException : public Tolvex::InternalException {
public:
    using InternalException::InternalException;
};

/// A path cache that could not be saved; an earlier file is still in place.
class KX_EXPORT UnableToSaveToolboxCacheException : public Tolvex::MessageIdentifierException {
public:
    /// `cache` is the file, or the root folder of one that is written to a stream; both texts are UTF-8.
    UnableToSaveToolboxCacheException(std::string_view cache, std::string reason)
        : MessageIdentifierException(
              {"TOLVEX:CachePath", "FailedToSave", {Tolvex::FromUtf8(cache), Tolvex::FromUtf8(reason)}}),
          reason(std::move(reason)) {}

    [[nodiscard]] const std::string& GetReason() const noexcept { return reason; }

private:
    std::string reason;
};

} // namespace PathManagement
