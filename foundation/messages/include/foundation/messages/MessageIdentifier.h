#pragma once

#include "foundation/text/ustring.h"

#include <string>
#include <vector>

namespace Tolvex {

/// Names one message of the catalogue: a component, a key and the texts that fill the message's holes, in order.
struct MessageIdentifier {
    std::string component; ///< e.g. "TOLVEX:tpath"
    std::string key;       ///< e.g. "directoryPermissionDenied"
    std::vector<ustring> arguments;

    bool operator==(const MessageIdentifier&) const = default;

    /// "component:key".
    [[nodiscard]] std::string GetFullName() const { return component + ':' + key; }
};

} // namespace Tolvex
