#pragma once

#include <optional>
#include <string>
#include <system_error>

namespace Tolvex {

/// The path of the running program, links resolved; no value when the kernel does not tell.
[[nodiscard]] std::optional<std::string> GetProgramPath();

/// The path of the process's working folder. When the system refuses it, the reason is in `error`, and the result is
/// the folder's last known name as far as there is one.
[[nodiscard]] std::string GetWorkingFolderPath(std::error_code& error);

/// Why the process could not go to a folder; no error when it could.
[[nodiscard]] std::error_code SetWorkingFolderPath(const std::string& path);

} // namespace Tolvex
