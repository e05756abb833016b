#pragma once

#include "foundation/text/ustring.h"

#include <filesystem>
#include <string>

namespace KxBenchmarks {

/// A code file that comes and goes in folders which do not have it otherwise.
class NewFile {
public:
    /// Throws std::runtime_error when there is such a file.
    explicit NewFile(const std::string& folder);
    /// The folder is left as it was found.
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    /// Both throw std::runtime_error when the file system refuses.
    void Create() const;
    void Remove() const;

    [[nodiscard]] static Tolvex::ustring_view GetStem() noexcept;
    [[nodiscard]] Tolvex::ustring GetPath() const;

private:
    const std::filesystem::path file;
};

} // namespace KxBenchmarks
