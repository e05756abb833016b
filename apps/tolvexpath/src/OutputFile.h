#pragma once

#include <string>

namespace TolvexPath {

/// For a file that is to be replaced whole: refuses, before any work is done, a name under which something else lies
/// than an ordinary file. A device or a pipe would be lost, since the new file would get its name. Throws UsageError.
void RequireReplaceable(const std::string& fileName);

} // namespace TolvexPath
