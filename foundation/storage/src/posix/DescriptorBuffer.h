#pragma once

#include <array>
#include <streambuf>

namespace Tolvex {

/// A stream buffer over a file descriptor that somebody else owns; reads or writes, not both.
class DescriptorBuffer final : public std::streambuf {
public:
    explicit DescriptorBuffer(int descriptor) noexcept : descriptor(descriptor) {}

    /// The error number of the last write or read that failed, 0 when none did.
    [[nodiscard]] int GetError() const noexcept { return error; }

protected:
    int_type overflow(int_type character) override;
    std::streamsize xsputn(const char* text, std::streamsize size) override;
    int sync() override;
    int_type underflow() override;

private:
    [[nodiscard]] bool WriteOut(const char* text, std::size_t size);

    int descriptor;
    int error = 0;
    std::array<char, 65536> held{}; // what was read, or is not written yet
};

} // namespace Tolvex
