#include "shell/LineSource.h"

#include <fmt/format.h>

namespace TolvexPath {

std::optional<std::string> ScriptLines::Next() {
    const auto line = lines.Next();
    return line ? std::optional<std::string>(*line) : std::nullopt;
}

std::string ScriptLines::GetPlace() const {
    return fmt::format("{}, line {}", lines.GetDisplayName(), lines.GetLineNumber());
}

} // namespace TolvexPath
