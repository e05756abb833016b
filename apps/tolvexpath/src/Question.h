#pragma once

#include "path_interfaces/FilenameMatchingPolicy.h"
#include "path_interfaces/SearchScope.h"

#include "foundation/text/ustring.h"

#include <optional>
#include <vector>

namespace TolvexPath {

/// How files are looked for where a question does not say so itself.
struct SearchDefaults {
    std::vector<Tolvex::ustring> extensions; ///< most wanted first
    PathManagement::FilenameMatchingPolicy policy = PathManagement::FilenameMatchingPolicy::native;
    std::optional<PathManagement::SearchScope> scope; ///< none: see GetUsualScope
    bool all = false;                                 ///< every file that answers, not only the first
};

/// One thing to look for.
struct Question {
    Tolvex::ustring name; ///< a stem, or a partial pathname
    std::optional<std::vector<Tolvex::ustring>> extensions;
    std::optional<PathManagement::FilenameMatchingPolicy> policy;
    std::optional<PathManagement::SearchScope> scope;
    std::optional<bool> all;
};

/// A name taken apart at its last separator, unless that leads it. Views into the name.
struct WantedName {
    Tolvex::ustring_view folders; ///< in front; empty for a plain name
    Tolvex::ustring_view stem;
};

[[nodiscard]] WantedName SplitWantedName(Tolvex::ustring_view name) noexcept;

/// Main folders for a plain name; all kinds for a partial pathname, whose folder names say which folder is meant.
[[nodiscard]] PathManagement::SearchScope GetUsualScope(Tolvex::ustring_view name);

} // namespace TolvexPath
