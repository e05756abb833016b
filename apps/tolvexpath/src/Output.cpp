#include "Output.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace TolvexPath {

void Output::Flush() {
    const std::size_t written = std::fwrite(buffer.data(), 1, buffer.size(), stdout);
    if (written != buffer.size() || std::fflush(stdout) != 0)
        throw std::system_error(errno, std::generic_category(), "cannot write the output");
    buffer.clear();
}

} // namespace TolvexPath
