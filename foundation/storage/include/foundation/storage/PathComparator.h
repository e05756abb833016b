#pragma once

#include "foundation/text/ustring.h"

#include <cstdint>

namespace Tolvex {

/// How a comparison treats case.
enum class CaseModifier : std::uint32_t {
    fileSystemRule = 0, ///< as the file system that holds the names does
    exact = 1,
    ignoreCase = 2,
};

/// Compares two file names, or two whole path texts, for equality by the rules of the file system they come from.
/// "Ignoring case" means equal after Unicode simple case folding. A small value; safe from any thread.
class KX_EXPORT PathComparator {
public:
    explicit constexpr PathComparator(bool fileSystemIgnoresCase = false) noexcept
        : fileSystemIgnoresCase(fileSystemIgnoresCase) {}

    /// Any other modifier is a programming error and ends the process.
    [[nodiscard]] bool operator()(ustring_view a, ustring_view b, CaseModifier modifier) const noexcept;

    /// What fileSystemRule means here.
    [[nodiscard]] constexpr bool IgnoresCase() const noexcept { return fileSystemIgnoresCase; }

private:
    bool fileSystemIgnoresCase;
};

} // namespace Tolvex
