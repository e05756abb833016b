#pragma once

#include "foundation/arrays/vxArray.h"

#include <span>
#include <string>

namespace TolvexPath {

class Output;

/// Shows what a call gave, for people: texts line by line without quotes, so that those of scripts can be used on;
/// "<missing>" for a missing text, numbers in as few digits as tell them apart. With `names`, one for each array, each
/// is headed by its name. What is null is passed over.
void ShowArrays(Output& output, std::span<const std::string> names, std::span<const TolvexArrays::ArrayOwner> arrays);

/// The same as one line of JSON: the value of the only array, or with names an object. A text is a string, a missing
/// one null, what has several rows or elements an array of them. What JSON has no number for (infinite ones) is null;
/// so is a null array.
void WriteArraysJson(Output& output, std::span<const std::string> names,
                     std::span<const TolvexArrays::ArrayOwner> arrays);

} // namespace TolvexPath
