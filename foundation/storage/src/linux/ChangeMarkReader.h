#pragma once

#include "FileSystemTable.h"
#include "foundation/storage/ChangeMark.h"

#include <string>

namespace Tolvex {

/// A mark and the rules of the file system it comes from.
struct ReadMark {
    ChangeMark mark;
    FileSystemRules rules;
};

/// The mark of an open folder; not `present` when the system does not tell.
[[nodiscard]] ReadMark ReadMarkOfDescriptor(int descriptor, const IClock& clock);

/// The mark that opening the folder at `path` for listing would take: one system call, a second one when not everybody
/// may list the folder, some more when its device is met for the first time. (Where an access control list shuts this
/// user out of a folder that all others may list, the mark is taken nevertheless: the folder then counts as changed.)
[[nodiscard]] ChangeMark ReadMarkOfPath(const std::string& path, const IClock& clock);

} // namespace Tolvex
