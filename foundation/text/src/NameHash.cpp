#include "foundation/text/NameHash.h"

#define XXH_INLINE_ALL // the hash is one short function for file names; a call into a library would cost as much again
#include <xxhash.h>

namespace Tolvex {

std::uint32_t HashName(ustring_view foldedName) noexcept {
    return static_cast<std::uint32_t>(XXH3_64bits(foldedName.data(), foldedName.size() * sizeof(char16_t)));
}

} // namespace Tolvex
