#pragma once

#include "LocatedJson.h"
#include "foundation/components/PackageManifest.h"

#include <boost/json/value.hpp>

namespace TolvexPackages {

/// Reads a manifest from JSON, by text alone: no folder is looked at. Throws PackageError.
[[nodiscard]] PackageManifest ReadManifestJson(const LocatedValue& value, const std::string& fileName);

/// What ReadManifestJson reads.
[[nodiscard]] boost::json::value MakeManifestJson(const PackageManifest& manifest);

} // namespace TolvexPackages
