#pragma once

#include "foundation/text/ustring.h"

#include <cstdint>
#include <span>

namespace Tolvex {

/// What a file is to the interpreter, as the cache file records it.
enum class ItemKind : std::uint8_t {
    code = 0,   ///< a code file of the environment, source or prepared
    native = 1, ///< a native module
    other = 2,
};

/// The kind of a file by its extension, which starts with the dot. Exact comparison.
[[nodiscard]] KX_EXPORT ItemKind GetItemKindForExtension(ustring_view extension) noexcept;

/// The extensions that the interpreter accepts for a name, most wanted first. The only list of them in the program.
[[nodiscard]] KX_EXPORT std::span<const ustring> GetCodeFileExtensions();

} // namespace Tolvex
