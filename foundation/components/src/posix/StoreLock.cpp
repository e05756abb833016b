#include "StoreLock.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace TolvexPackages {

namespace {

[[noreturn]] void Fail(const std::filesystem::path& file, int error) {
    throw std::filesystem::filesystem_error("The packages cannot be locked", file,
                                            std::error_code(error, std::generic_category()));
}

} // namespace

StoreLock::StoreLock(const std::filesystem::path& file)
    : descriptor(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)) {
    if (descriptor < 0)
        Fail(file, errno);
    while (::flock(descriptor, LOCK_EX) != 0) {
        if (const int error = errno; error != EINTR) {
            ::close(descriptor);
            Fail(file, error);
        }
    }
}

StoreLock::~StoreLock() {
    ::close(descriptor);
}

} // namespace TolvexPackages
