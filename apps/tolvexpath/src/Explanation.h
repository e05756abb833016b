#pragma once

#include "Question.h"

#include "path_interfaces/IPath.h"

#include <string>
#include <string_view>

namespace TolvexPath {

/// A file on the path whose name is the wanted one but for its case, its extension and the kind of its folder.
struct Candidate {
    PathManagement::FoundItem file;
    std::size_t place = 0;    ///< of its main folder among those that `path` numbers; 0 when it may not stand there
    std::string_view verdict; ///< one of a fixed set of words, for programs
    std::string reason;       ///< for people
};

/// Why a question is answered as it is.
struct Explanation {
    /// In the order in which a search meets them: path order, and in one folder first what answers, most wanted first.
    std::vector<Candidate> candidates;
    const Candidate* winner = nullptr; ///< one of the candidates; what the search finds. Null for none.
};

/// Judges every candidate by the answers that the path itself gives. REQUIRES: `question` says everything.
[[nodiscard]] Explanation Explain(const PathManagement::IPath& path, const Question& question);

} // namespace TolvexPath
