#pragma once

#include "foundation/components/ComponentIdentifier.h"
#include "foundation/storage/CanonicalAbsoluteIRI.h"

#include <cstdint>
#include <map>
#include <string>
#include <variant>
#include <vector>

namespace TolvexPackages {

using TolvexComponents::ComponentIdentifier;

using PropertyValue = std::variant<bool, std::int64_t, double, Tolvex::ustring>;

/// Properties that the search path knows.
inline constexpr std::string_view manualInstallProperty = "ManualInstall"; ///< bool: people asked for the package
inline constexpr std::string_view pathPositionProperty = "PathPosition";   ///< text: "begin" or "end"

/// What a registry knows about one version of one package. Shared as shared_ptr<const PackageRecord>; never changes.
struct PackageRecord {
    ComponentIdentifier identifier;

    /// All folders of the package, its root folder first. Never empty. What lies below one of them belongs to the
    /// package, too.
    std::vector<Tolvex::CanonicalAbsoluteIRI> memberFolders{};

    /// Installed by the package manager, into a place of its own; false for a package that is used where its author
    /// keeps it. Of the former, those go on the path that people asked for (`manualInstallProperty`).
    bool isManaged = true;

    /// Of the packages that are not managed, those go on the path that bear this flag.
    bool isForPath = false;

    /// Somebody works on the package: its folders are watched by notification.
    bool isWatchedClosely = false;

    /// Packages are put on the path in ascending order of it.
    std::uint64_t order = 0;

    std::map<std::string, PropertyValue, std::less<>> properties{};

    bool operator==(const PackageRecord&) const = default;

    [[nodiscard]] const Tolvex::CanonicalAbsoluteIRI& GetRootFolder() const { return memberFolders.front(); }

    /// Null when the package does not have the property.
    [[nodiscard]] const PropertyValue* FindProperty(std::string_view name) const {
        const auto found = properties.find(name);
        return found == properties.end() ? nullptr : &found->second;
    }

    /// Whether the package asks to stand in front of all folders. A position that is no text asks for nothing.
    [[nodiscard]] bool BelongsInFront() const {
        const PropertyValue* const position = FindProperty(pathPositionProperty);
        const auto* const text = position == nullptr ? nullptr : std::get_if<Tolvex::ustring>(position);
        return text != nullptr && *text == u"begin";
    }
};

} // namespace TolvexPackages
