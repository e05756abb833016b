#pragma once

#include "manual/CommandOutline.h"

#include <string>

namespace TolvexPath {

/// The manual page of a program, in the language of man(7).
[[nodiscard]] std::string MakeManualPage(const CommandOutline& program, const std::string& version);

} // namespace TolvexPath
