#pragma once

#include <string>
#include <string_view>

namespace TolvexPath {

/// The standard output, collected into large pieces. What is written goes out with Flush, or when much has come
/// together; what is never flushed is lost. Throws std::system_error when the system refuses it, as
/// a full disk does.
class Output {
public:
    Output() = default;
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void Write(std::string_view bytes) {
        buffer.append(bytes);
        if (buffer.size() >= flushSize)
            Flush();
    }
    void Write(char byte) { Write(std::string_view(&byte, 1)); }

    void Flush();

private:
    static constexpr std::size_t flushSize = 1 << 16; // bytes
    std::string buffer;
};

} // namespace TolvexPath
