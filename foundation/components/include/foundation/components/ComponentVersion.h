#pragma once

#include "foundation/text/ustring.h"

#include <array>
#include <cstdint>
#include <optional>

namespace TolvexComponents {

/// The version of a component: three numbers and, for what comes before a release, a mark ("1.4.0", "2.0.0-beta.1").
/// Compared for equality only. A value; safe from any thread.
class KX_EXPORT ComponentVersion {
public:
    using Numbers = std::array<std::uint32_t, 3>;

    /// 0.0.0.
    ComponentVersion() noexcept = default;
    explicit ComponentVersion(Numbers numbers, Tolvex::ustring preRelease = {}) noexcept;

    /// Reads what toString writes, and shorter forms whose missing numbers are 0 ("1.4"). No value for any other text.
    [[nodiscard]] static std::optional<ComponentVersion> fromString(Tolvex::ustring_view text);

    [[nodiscard]] Tolvex::ustring toString() const;
    [[nodiscard]] std::size_t hashValue() const noexcept;

    bool operator==(const ComponentVersion&) const = default;

private:
    Numbers numbers{};
    Tolvex::ustring preRelease; // without its "-"; empty for a release
};

} // namespace TolvexComponents
