#pragma once

#include "foundation/text/ustring.h"

#include <functional>

namespace Tolvex {

/// Resolves links, "." and ".." of an absolute path name by name, as far as it exists; what does not exist is cleaned
/// by text, until a ".." leads back to what does. A link that leads in circles counts as missing and keeps its name.
class PathResolver {
public:
    /// Links followed in one path before the system calls them a circle; Linux's limit.
    static constexpr int linkLimit = 40;

    enum class Kind { missing, link, other };

    struct Step {
        Kind kind = Kind::missing;
        ustring text; ///< a link's target; else the name as the folder spells it
    };

    /// Looks at one name in a folder whose path is resolved; the root's path is the empty text.
    using Probe = std::function<Step(ustring_view folder, ustring_view name)>;

    explicit PathResolver(Probe probe);

    [[nodiscard]] ustring Resolve(ustring_view path);

private:
    void Append(ustring_view name, bool exists);
    void Leave();
    [[nodiscard]] bool Enter(ustring_view name);
    [[nodiscard]] bool Follow(ustring_view target);

    Probe probe;
    ustring resolved;
    std::size_t missingNames = 0; // at the end of `resolved`
    int linksLeft = linkLimit;
};

} // namespace Tolvex
