#pragma once

#include "manual/CommandOutline.h"

#include <string>

namespace TolvexPath {

/// A script that has bash complete the program's commands, options, files and folders.
[[nodiscard]] std::string MakeBashCompletion(const CommandOutline& program);

/// The same for zsh, with descriptions.
[[nodiscard]] std::string MakeZshCompletion(const CommandOutline& program);

} // namespace TolvexPath
