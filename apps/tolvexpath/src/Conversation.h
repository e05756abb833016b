#pragma once

#include "ExitCode.h"

#include <string>

namespace TolvexPath {

class Finder;
class Output;

/// Answers a file of questions, one a line, with one line of JSON each, in order; blank lines are passed over. Whatever
/// is answered is written out before more input is waited for, so that another program can ask, read and ask again. The
/// first line that is no question ends it, with a message that gives its number.
[[nodiscard]] ExitCode AnswerQuestions(const Finder& finder, const std::string& fileName, Output& output);

} // namespace TolvexPath
