#pragma once

#include <span>
#include <string>
#include <string_view>

namespace TolvexPath {

/// The one of the known words that somebody may have meant by another; empty when none is near. Of several equally near
/// ones the first.
[[nodiscard]] std::string FindNearestWord(std::string_view word, std::span<const std::string> known);

} // namespace TolvexPath
