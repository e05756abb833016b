#pragma once

#include "path_interfaces/FoundItem.h"

#include <span>

namespace TolvexPath {

class Output;

/// One line: a JSON array with an object for each file, its entry's folder, its name taken apart and its full path.
void WriteFoundJson(Output& output, std::span<const PathManagement::FoundItem> files);

/// The full path of each file as the bytes that name it on the disk, each followed by `terminator`.
void WriteFoundPaths(Output& output, std::span<const PathManagement::FoundItem> files, char terminator);

/// The full path of each file on a line, as people can read it.
void ShowFoundPaths(Output& output, std::span<const PathManagement::FoundItem> files);

} // namespace TolvexPath
