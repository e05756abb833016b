#include "foundation/components/PackageError.h"

#include <utility>

namespace TolvexPackages {

std::string PackageProblem::GetText() const {
    return '\'' + file + '\'' + (line == 0 ? "" : ", line " + std::to_string(line)) + ": " + reason;
}

PackageError::PackageError(PackageProblem problem)
    : Tolvex::Exception(problem.GetText()), problem(std::move(problem)) {}

PackageError::~PackageError() = default;

} // namespace TolvexPackages
