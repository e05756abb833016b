#include "InputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace TolvexPath {

namespace {

[[noreturn]] void ThrowReadError(const std::string& displayName, int error) {
    throw std::system_error(error, std::generic_category(), "cannot read " + displayName);
}

int Open(const std::string& fileName) {
    if (fileName == "-")
        return STDIN_FILENO;
    const int descriptor = ::open(fileName.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        ThrowReadError("'" + fileName + "'", errno);
    return descriptor;
}

} // namespace

InputFile::InputFile(const std::string& fileName)
    : displayName(fileName == "-" ? "the standard input" : "'" + fileName + "'"), descriptor(Open(fileName)) {}

InputFile::InputFile(InputFile&& other) noexcept
    : displayName(std::move(other.displayName)), descriptor(std::exchange(other.descriptor, STDIN_FILENO)) {}

InputFile::~InputFile() {
    if (descriptor != STDIN_FILENO)
        ::close(descriptor);
}

bool InputFile::IsOnDisk() const noexcept {
    struct stat status {};
    return descriptor != STDIN_FILENO && ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

std::size_t InputFile::Read(std::span<char> target) {
    for (;;) {
        const ssize_t count = ::read(descriptor, target.data(), target.size());
        if (count >= 0)
            return static_cast<std::size_t>(count);
        if (errno != EINTR)
            ThrowReadError(displayName, errno);
    }
}

} // namespace TolvexPath
