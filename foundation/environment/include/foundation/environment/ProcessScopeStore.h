#pragma once

#include "foundation/text/Export.h"

#include <cstddef>
#include <memory>
#include <typeindex>

namespace Tolvex {

/// Owns the process's singletons: one object a type, whatever module put it there. Objects live until the process ends
/// and are destroyed in reverse order of being put in. Safe from any thread.
class KX_EXPORT ProcessScopeStore {
public:
    using Identifier = std::size_t;

    /// The identifier under which objects of `type` are kept; equal for equal types.
    [[nodiscard]] static Identifier getNextID(std::type_index type);

    /// The object under an identifier, or null. An object may still ask while it is destroyed at the end of the
    /// process, and finds those that were put in before it.
    [[nodiscard]] static void* Get(Identifier identifier);

    /// Keeps `object`, which is not null, under an identifier unless there is one already; returns the one that is
    /// kept.
    static void* Put(Identifier identifier, std::shared_ptr<void> object);
};

} // namespace Tolvex
