#pragma once

#include <string>

namespace TolvexPath {

struct PathCheck;

/// One page in HTML that needs nothing else: the path drawn as a bar of its folders, what hides what, every problem and
/// every folder, to be searched by name. Whatever names hold is shown as text.
[[nodiscard]] std::string MakeCheckPage(const PathCheck& check);

/// "3 folders, 26 files, 4 problems".
[[nodiscard]] std::string SummariseCheck(const PathCheck& check);

} // namespace TolvexPath
