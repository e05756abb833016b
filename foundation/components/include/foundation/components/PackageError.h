#pragma once

#include "foundation/messages/Exceptions.h"

#include <cstddef>
#include <string>

namespace TolvexPackages {

/// What is wrong with a file or folder of a package, for people to read and cure.
struct PackageProblem {
    std::string file;     ///< bytes, as the system names it
    std::size_t line = 0; ///< counted from 1; 0 when it is not about a line
    std::string reason;

    bool operator==(const PackageProblem&) const = default;

    /// "'/a/package.json', line 3: 'name' is missing".
    [[nodiscard]] KX_EXPORT std::string GetText() const;
};

/// Thrown when packages cannot be read, installed, updated or removed; what was there before stays.
class KX_EXPORT PackageError : public Tolvex::Exception {
public:
    explicit PackageError(PackageProblem problem);
    ~PackageError() override;
    [[nodiscard]] const PackageProblem& GetProblem() const noexcept { return problem; }

private:
    PackageProblem problem;
};

} // namespace TolvexPackages
