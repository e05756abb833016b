#pragma once

#include "ExitCode.h"
#include "Question.h"

namespace TolvexPath {

class Finder;
class Output;

/// Tells why a question is answered as it is: every candidate with its verdict, and where there is no answer what comes
/// near. For people, or as one JSON object.
[[nodiscard]] ExitCode ReportExplanation(const Finder& finder, const Question& question, Output& output, bool asJson);

} // namespace TolvexPath
