#pragma once

#include <filesystem>

namespace TolvexPackages {

/// Copies a folder with all below it to `target`, which is not there yet; links are copied as links. When it returns,
/// all of it has reached the disk. Throws std::filesystem::filesystem_error, and may leave a part.
void CopyPackageFolder(const std::filesystem::path& source, const std::filesystem::path& target);

/// Removes a folder with all below it. It loses its name first, so that nobody sees a part of it; what a process that
/// was killed left of that is removed, too. Nothing there is no error. Throws std::filesystem::filesystem_error.
void RemovePackageFolder(const std::filesystem::path& folder);

} // namespace TolvexPackages
