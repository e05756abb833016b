#pragma once

#include <optional>
#include <string>

namespace TolvexPath {

/// Where the shell keeps what was typed in: in the program's folder below XDG_STATE_HOME, or below ~/.local/state. The
/// folder is made if it is missing, for its owner alone; no value when it cannot be.
[[nodiscard]] std::optional<std::string> PrepareHistoryFile();

} // namespace TolvexPath
