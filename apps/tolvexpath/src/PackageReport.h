#pragma once

#include "foundation/components/InstalledPackages.h"

#include <filesystem>

namespace TolvexPath {

class Output;

/// One line: a JSON object with the store's folder and an array of the packages.
void WritePackagesJson(Output& output, const std::filesystem::path& store,
                       const std::vector<const TolvexPackages::InstalledPackage*>& packages);

/// A line for each package: name and version, where it is, and what is to be known of it.
void ShowPackages(Output& output, const std::vector<const TolvexPackages::InstalledPackage*>& packages);

} // namespace TolvexPath
