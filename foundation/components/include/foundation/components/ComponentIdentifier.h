#pragma once

#include "foundation/components/ComponentVersion.h"

#include <boost/uuid/uuid.hpp>

#include <utility>

namespace TolvexComponents {

/// Names one version of one component. The unique identifier tells components apart, whatever they are called; the name
/// is for people. A value; safe from any thread.
class ComponentIdentifier {
public:
    using UniqueID = boost::uuids::uuid;

    ComponentIdentifier(Tolvex::ustring name, ComponentVersion version, const UniqueID& uniqueID)
        : name(std::move(name)), version(std::move(version)), uniqueID(uniqueID) {}

    [[nodiscard]] const Tolvex::ustring& GetName() const noexcept { return name; }
    [[nodiscard]] const ComponentVersion& GetVersion() const noexcept { return version; }
    [[nodiscard]] const UniqueID& GetUniqueID() const noexcept { return uniqueID; }

    /// The same version of the same component; names are not compared.
    friend bool operator==(const ComponentIdentifier& a, const ComponentIdentifier& b) noexcept {
        return a.uniqueID == b.uniqueID && a.version == b.version;
    }

private:
    Tolvex::ustring name;
    ComponentVersion version;
    UniqueID uniqueID;
};

/// For std::unordered containers.
struct ComponentIdentifierHash {
    std::size_t operator()(const ComponentIdentifier& identifier) const noexcept {
        return 31 * boost::uuids::hash_value(identifier.GetUniqueID()) + identifier.GetVersion().hashValue();
    }
};

} // namespace TolvexComponents
