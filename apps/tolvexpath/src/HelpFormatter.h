#pragma once

#include <memory>

namespace CLI {
class FormatterBase;
}

namespace TolvexPath {

/// Help that fits a terminal of 80 columns: descriptions are wrapped, and what an option needs or rules out stands
/// behind its description.
[[nodiscard]] std::shared_ptr<CLI::FormatterBase> CreateHelpFormatter();

} // namespace TolvexPath
