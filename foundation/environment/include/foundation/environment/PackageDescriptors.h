#pragma once

#include "foundation/text/ustring.h"

namespace TolvexPackages {

/// Puts together the texts by which package and class folders are named to people. Safe from any thread.
class IPackageDescriptorFactory {
public:
    virtual ~IPackageDescriptorFactory() = default;

    /// The name of a package or class inside an owner ("a.b" for "b" in "a"); `ownerName` is empty at the top.
    [[nodiscard]] virtual Tolvex::ustring CreateQualifiedName(Tolvex::ustring_view ownerName,
                                                              Tolvex::ustring_view name) const = 0;
};

[[nodiscard]] KX_EXPORT const IPackageDescriptorFactory& GetPackageDescriptorFactory();

} // namespace TolvexPackages
