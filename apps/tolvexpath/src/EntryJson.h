#pragma once

#include "path_interfaces/IPathEntry.h"

namespace TolvexPath {

class JsonWriter;

/// Writes an entry and the entries below it as one JSON object.
void WriteEntryJson(JsonWriter& json, const PathManagement::IPathEntry& entry);

} // namespace TolvexPath
