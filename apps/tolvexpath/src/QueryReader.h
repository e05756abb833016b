#pragma once

#include "Question.h"

#include <string_view>

namespace TolvexPath {

/// Reads a question from one line of JSON: {"name", "extensions", "policy", "scope", "all"}, of which only the name has
/// to be there. An escape "\udc80" to "\udcff" without a partner stands for a byte that is no UTF-8.
/// Throws UsageError for anything else.
[[nodiscard]] Question ReadQuestion(std::string_view line);

} // namespace TolvexPath
