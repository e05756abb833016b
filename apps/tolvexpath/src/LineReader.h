#pragma once

#include "InputFile.h"

#include <optional>
#include <string>
#include <string_view>

namespace TolvexPath {

/// Cuts an input into lines at line feeds. The last line may lack its line feed; the mark that some editors put in
/// front of UTF-8 belongs to no line.
class LineReader {
public:
    explicit LineReader(InputFile input);

    /// True when Next answers without waiting for input.
    [[nodiscard]] bool IsLineReady();

    /// The next line without its line feed, valid until the next call; no value at the end.
    [[nodiscard]] std::optional<std::string_view> Next();

    /// The number of the line that Next gave last, counted from 1.
    [[nodiscard]] std::size_t GetLineNumber() const noexcept { return lineNumber; }
    [[nodiscard]] const std::string& GetDisplayName() const noexcept { return input.GetDisplayName(); }

private:
    void ReadMore();

    InputFile input;
    std::string buffer;
    std::size_t lineStart = 0;
    std::size_t searched = 0; // no line feed between lineStart and here
    bool atEnd = false;
    std::size_t lineNumber = 0;
};

} // namespace TolvexPath
