#pragma once

#include "foundation/components/ComponentIdentifier.h"
#include "foundation/storage/CanonicalAbsoluteIRI.h"

#include <memory>

// Only handed through: what they are is known to whoever makes components and to whoever asks for them.
namespace PathManagement {
class IPath;
class IPathEntry;
} // namespace PathManagement

namespace TolvexComponents {

/// A component that brings a path of its own. Immutable; safe from any thread.
class IComponent {
public:
    virtual ~IComponent() = default;

    [[nodiscard]] virtual const ComponentIdentifier& GetIdentifier() const = 0;

    /// The folder that holds the component; all below belongs to it, but for components that lie inside.
    [[nodiscard]] virtual const Tolvex::CanonicalAbsoluteIRI& GetRootFolder() const = 0;

    /// What code inside the component sees as its path. Never null.
    [[nodiscard]] virtual std::shared_ptr<const PathManagement::IPath> GetPath() const = 0;

    /// The component's own entry for a folder that lies in it. Never null.
    [[nodiscard]] virtual std::shared_ptr<const PathManagement::IPathEntry>
    GetPathEntry(const Tolvex::CanonicalAbsoluteIRI& folder) const = 0;
};

} // namespace TolvexComponents
