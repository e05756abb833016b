#pragma once

#include "foundation/components/IPackageRegistry.h"

#include <span>
#include <vector>

namespace PathManagement {

/// The folders that packages put on the path, package by package in the order given: the root folder of each, by which
/// the manager knows it and which stands for all that belongs to the package. A package that is not registered puts
/// none. Safe from any thread.
[[nodiscard]] KX_EXPORT std::vector<Tolvex::CanonicalAbsoluteIRI>
GetPathFoldersForPackages(const TolvexPackages::IPackageRegistry& registry,
                          std::span<const TolvexComponents::ComponentIdentifier> packages);

} // namespace PathManagement
