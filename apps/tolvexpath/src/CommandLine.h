#pragma once

#include "ExitCode.h"

namespace TolvexPath {

/// Parses the command line, runs the command it names and reports what went wrong. Throws nothing.
[[nodiscard]] ExitCode RunCommandLine(int argumentCount, const char* const* arguments) noexcept;

} // namespace TolvexPath
