#pragma once

#include "foundation/text/ustring.h"

#include <algorithm>

namespace Tolvex {

/// Calls `visit` with each name of a path text, in order; empty names are skipped.
template <class Visit>
void ForEachName(ustring_view path, Visit&& visit) {
    for (std::size_t start = 0; start < path.size();) {
        const auto end = std::min(path.find(u'/', start), path.size());
        if (end > start)
            visit(path.substr(start, end - start));
        start = end + 1;
    }
}

/// Appends "/" and a name.
inline void AppendName(ustring& path, ustring_view name) {
    path += u'/';
    path += name;
}

/// Drops the last name of a path made by AppendName; the empty text, which stands for the root, stays.
inline void DropName(ustring& path) {
    if (const auto slash = path.rfind(u'/'); slash != ustring::npos)
        path.resize(slash);
}

/// Whether `name` can be the name of something inside a folder.
[[nodiscard]] inline bool IsChildName(ustring_view name) noexcept {
    constexpr ustring_view forbidden(u"/\0", 2);
    return !name.empty() && name != u"." && name != u".." && name.find_first_of(forbidden) == ustring_view::npos;
}

/// Resolves "." and ".." of an absolute path by text alone; ".." of the root is the root.
[[nodiscard]] inline ustring CleanPath(ustring_view path) {
    ustring clean;
    clean.reserve(path.size());
    ForEachName(path, [&](ustring_view name) {
        if (name == u"..")
            DropName(clean);
        else if (name != u".")
            AppendName(clean, name);
    });
    return clean.empty() ? ustring(u"/") : clean;
}

} // namespace Tolvex
