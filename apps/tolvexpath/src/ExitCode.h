#pragma once

namespace TolvexPath {

/// What the program tells its caller when it ends.
enum class ExitCode : int {
    success = 0,
    notFound = 1, ///< a name was not found, or a folder that was asked for could not be read
    failure = 2,  ///< wrong use, or an input or output failed
};

} // namespace TolvexPath
