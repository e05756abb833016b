#include "DescriptorBuffer.h"

#include "FileDescriptor.h"

namespace Tolvex {

bool DescriptorBuffer::WriteOut(const char* text, std::size_t size) {
    while (size > 0) {
        const auto written = RetryInterrupted([&] { return ::write(descriptor, text, size); });
        if (written < 0) {
            error = errno;
            return false;
        }
        text += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

int DescriptorBuffer::sync() {
    const bool done = WriteOut(pbase(), static_cast<std::size_t>(pptr() - pbase()));
    setp(held.data(), held.data() + held.size());
    return done ? 0 : -1;
}

DescriptorBuffer::int_type DescriptorBuffer::overflow(int_type character) {
    if (sync() != 0)
        return traits_type::eof();
    if (!traits_type::eq_int_type(character, traits_type::eof()))
        sputc(traits_type::to_char_type(character));
    return traits_type::not_eof(character);
}

/// Longer texts go out directly.
std::streamsize DescriptorBuffer::xsputn(const char* text, std::streamsize size) {
    if (size < epptr() - pptr())
        return std::streambuf::xsputn(text, size);
    return sync() == 0 && WriteOut(text, static_cast<std::size_t>(size)) ? size : 0;
}

DescriptorBuffer::int_type DescriptorBuffer::underflow() {
    const auto length = RetryInterrupted([&] { return ::read(descriptor, held.data(), held.size()); });
    if (length <= 0) {
        error = length < 0 ? errno : 0;
        return traits_type::eof();
    }
    setg(held.data(), held.data(), held.data() + length);
    return traits_type::to_int_type(held[0]);
}

} // namespace Tolvex
