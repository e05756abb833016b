#include "foundation/diagnostics/Terminate.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>

namespace Tolvex {

namespace {

/// A text of bounded length that needs no memory from the heap, which may be what is broken. What does not fit is cut.
class LastWords {
public:
    void Append(std::string_view text) noexcept {
        const std::size_t fitting = std::min(text.size(), buffer.size() - size);
        std::copy_n(text.data(), fitting, buffer.data() + size);
        size += fitting;
    }

    void Append(std::uint_least32_t number) noexcept {
        std::array<char, 16> digits;
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
        Append(std::string_view(digits.data(), static_cast<std::size_t>(end - digits.data())));
    }

    void WriteToStandardError() const noexcept {
        if (::write(STDERR_FILENO, buffer.data(), size) < 0)
            return; // nobody is left to tell
    }

private:
    std::array<char, 4096> buffer;
    std::size_t size = 0;
};

std::string_view GetUnitName(std::string_view file) {
    file.remove_prefix(file.rfind('/') + 1); // npos + 1 is 0
    return file.substr(0, file.rfind('.'));
}

} // namespace

void DiagnosticTerminate(std::string_view assertion, std::source_location where) noexcept {
    LastWords words;
    words.Append("Assertion failed: ");
    words.Append(assertion);
    words.Append("\n  in ");
    words.Append(GetUnitName(where.file_name()));
    words.Append(", line ");
    words.Append(where.line());
    words.Append(", ");
    words.Append(where.function_name());
    words.Append("\n");
    words.WriteToStandardError();
    std::abort();
}

} // namespace Tolvex
