#include "OutputFile.h"

#include "UsageError.h"

#include <fmt/format.h>

#include <filesystem>
#include <system_error>

namespace TolvexPath {

namespace fs = std::filesystem;

void RequireReplaceable(const std::string& fileName) {
    const auto refuse = [&fileName](const std::string& reason) {
        throw UsageError(fmt::format("cannot write '{}': {}", fileName, reason));
    };
    if (fileName.empty())
        refuse("the name is empty");
    if (fileName == "-")
        refuse("the standard output is not for it; name a file, './-' for one that is called so");
    std::error_code ignored; // a name that cannot be looked at is refused when the file is made
    const fs::file_status there = fs::status(fileName, ignored);
    if (fs::is_directory(there))
        refuse(std::make_error_code(std::errc::is_a_directory).message());
    if (fs::exists(there) && !fs::is_regular_file(there))
        refuse("it is no ordinary file, which could be replaced");
}

} // namespace TolvexPath
