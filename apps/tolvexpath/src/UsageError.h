#pragma once

#include <stdexcept>

namespace TolvexPath {

/// Thrown where the program was called or fed wrongly; the text is for the person who did it. Ends in
/// ExitCode::failure.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace TolvexPath
