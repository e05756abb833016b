#pragma once

#include "Question.h"

#include "path_interfaces/IPath.h"

#include <optional>
#include <string>

namespace TolvexPath {

/// A file as programs call it: a function of a package or a method of a class, which a search takes by folder names.
struct QualifiedFile {
    PathManagement::FoundItem file;
    Tolvex::ustring name; ///< by which a search finds it: "+shapes/square"
};

/// Takes the question's name as a dotted one ("shapes.square", "Polygon.area"; the dots may be separators, too) and
/// gives the first file on the path that is called so. REQUIRES: `question` says everything.
[[nodiscard]] std::optional<QualifiedFile> FindQualified(const PathManagement::IPath& path, const Question& question);

/// In words: "'shapes.square' is +shapes/square".
[[nodiscard]] std::string DescribeQualified(const Question& question, const QualifiedFile& qualified);

/// The folder itself, or the nearest one above it, that may stand on a path.
[[nodiscard]] Tolvex::AbsoluteIRI GetNearestMainFolder(Tolvex::AbsoluteIRI folder);

/// The names of the special folders that lead to a folder, without what is above them: "+shapes/@Polygon"; empty for an
/// ordinary folder.
[[nodiscard]] Tolvex::ustring GetSpecialFolderNames(const Tolvex::AbsoluteIRI& folder);

} // namespace TolvexPath
