#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace TolvexPath {

/// A file, or the standard input, read as bytes as they come. Closes what it opened. Not copied.
class InputFile {
public:
    /// Opens a file; "-" is the standard input. Throws std::system_error.
    explicit InputFile(const std::string& fileName);
    ~InputFile();
    InputFile(InputFile&& other) noexcept;
    InputFile& operator=(InputFile&&) = delete;

    /// Reads what is there, waiting only when nothing is; 0 at the end. Throws std::system_error.
    [[nodiscard]] std::size_t Read(std::span<char> target);

    /// True for an ordinary file that was opened by its name; false for the standard input, pipes and devices.
    [[nodiscard]] bool IsOnDisk() const noexcept;

    /// The file's name as messages give it.
    [[nodiscard]] const std::string& GetDisplayName() const noexcept { return displayName; }

private:
    std::string displayName;
    int descriptor;
};

} // namespace TolvexPath
