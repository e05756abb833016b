#pragma once

#include "Question.h"

#include "path_interfaces/IPath.h"

#include <memory>
#include <utility>

namespace TolvexPath {

/// Answers questions on one path. Safe from any thread.
class Finder {
public:
    /// REQUIRES: `path` is not null.
    Finder(std::shared_ptr<const PathManagement::IPath> path, SearchDefaults defaults) noexcept
        : path(std::move(path)), defaults(std::move(defaults)) {}

    /// The files that answer, in path order; at most one unless all are asked for.
    [[nodiscard]] std::vector<PathManagement::FoundItem> Answer(const Question& question) const;

    /// The question with the defaults in the places that it leaves open.
    [[nodiscard]] Question Complete(Question question) const;

    [[nodiscard]] const PathManagement::IPath& GetPath() const noexcept { return *path; }

    /// For a question without an answer: the nearest thing that would have had one, in words ("'/a/Area.kx' differs in
    /// case"); empty when there is none.
    [[nodiscard]] std::string ExplainMiss(const Question& question) const;

private:
    std::shared_ptr<const PathManagement::IPath> path;
    SearchDefaults defaults;
};

/// The question for a name given with its extension; a file's own dots behind its folder names.
[[nodiscard]] Question WithoutExtension(Question question);

} // namespace TolvexPath
