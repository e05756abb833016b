#pragma once

#include "foundation/environment/PackageDescriptors.h"
#include "foundation/storage/AbsoluteIRI.h"

namespace PathManagement {

/// How the entry of a folder is named to people: a main folder by its path, a package by its dotted name, a class
/// folder by its qualified class name, private and resources folders by their owner's descriptor and their own name.
/// Depends on the location only, so that a folder has one descriptor however it was asked for.
[[nodiscard]] Tolvex::ustring DescribeEntry(const Tolvex::AbsoluteIRI& location,
                                            const TolvexPackages::IPackageDescriptorFactory& qualifiedNames);

} // namespace PathManagement
