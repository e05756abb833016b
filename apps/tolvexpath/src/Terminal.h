#pragma once

namespace TolvexPath {

/// The three standard channels of the process.
enum class StandardChannel : int { input = 0, output = 1, error = 2 };

[[nodiscard]] bool IsTerminal(StandardChannel channel) noexcept;

/// True when colour may be written to a channel: a terminal that can show it, and nobody has asked for none
/// (NO_COLOR not empty, TERM=dumb).
[[nodiscard]] bool ShowsColour(StandardChannel channel) noexcept;

} // namespace TolvexPath
