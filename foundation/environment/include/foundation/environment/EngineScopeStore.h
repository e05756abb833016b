#pragma once

#include "foundation/text/Export.h"

#include <cstddef>
#include <memory>
#include <typeindex>

namespace Tolvex {

/// Owns what lives as long as one instance of the numeric engine: one object a type. A process has one engine at a
/// time; when its host ends it, the objects go, and the next engine starts with none. Safe from any thread.
class KX_EXPORT EngineScopeStore {
public:
    using Identifier = std::size_t;

    /// The identifier under which objects of `type` are kept; equal for equal types.
    [[nodiscard]] static Identifier getNextID(std::type_index type);

    /// The object under an identifier, or null.
    [[nodiscard]] static void* Get(Identifier identifier);

    /// Keeps `object`, which is not null, in the place of one that is there under the same identifier, which is
    /// dropped.
    static void Put(Identifier identifier, std::shared_ptr<void> object);

    /// The engine ends: destroys what is kept, in reverse order of being put in, objects put in meanwhile included.
    /// Also done when the process ends.
    static void End();
};

} // namespace Tolvex
