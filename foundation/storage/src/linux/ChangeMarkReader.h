#pragma once

#include "FileSystemTable.h"
#include "foundation/storage/AbsoluteIRI.h"
#include "foundation/storage/ChangeMark.h"

#include <span>
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

/// The same for many folders of the disk: those that follow each other are looked at from the folder above them, so
/// that the system walks a part of the way once for all.
void ReadMarksOfPaths(std::span<const AbsoluteIRI* const> locations, std::span<ChangeMark> marks, const IClock& clock);

} // namespace Tolvex
