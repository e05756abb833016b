#pragma once

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace Tolvex {

/// Owns one file descriptor, or none.
class FileDescriptor {
public:
    FileDescriptor() noexcept = default;
    explicit FileDescriptor(int number) noexcept : number(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number(std::exchange(other.number, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(number, other.number);
        return *this;
    }
    ~FileDescriptor() {
        if (number >= 0)
            ::close(number);
    }

    [[nodiscard]] bool IsOpen() const noexcept { return number >= 0; }
    [[nodiscard]] int Get() const noexcept { return number; }

private:
    int number = -1;
};

/// Repeats a system call that a signal interrupted.
template <class Call>
auto RetryInterrupted(Call&& call) {
    for (;;) {
        const auto result = call();
        if (result != -1 || errno != EINTR)
            return result;
    }
}

} // namespace Tolvex
