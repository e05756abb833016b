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

    /// Any other modifier is a programming error; it ends the process when the answer depends on it.
    [[nodiscard]] bool operator()(ustring_view a, ustring_view b, CaseModifier modifier) const noexcept {
        return a.size() == b.size() && (IsSameText(a, b) || IsSameInOtherCase(a, b, modifier));
    }

    /// What fileSystemRule means here.
    [[nodiscard]] constexpr bool IgnoresCase() const noexcept { return fileSystemIgnoresCase; }

private:
    /// REQUIRES: texts of one length that are not the same.
    [[nodiscard]] bool IsSameInOtherCase(ustring_view a, ustring_view b, CaseModifier modifier) const noexcept;

    bool fileSystemIgnoresCase;
};

} // namespace Tolvex
