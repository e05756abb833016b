#pragma once

#include "shell/LineSource.h"
#include "shell/WordCompleter.h"

#include <memory>

namespace TolvexPath {

/// Lines that a person types in on the terminal, with editing, completion by the tabulator key and a history. Ctrl-C
/// discards the line, Ctrl-D on an empty one ends.
///
/// `historyFile` keeps the history from one time to the next; none where there is no value. A file that cannot be read
/// or written is done without. `completer` outlives it.
[[nodiscard]] std::unique_ptr<LineSource> CreateEditedLines(const WordCompleter& completer,
                                                            const std::optional<std::string>& historyFile);

} // namespace TolvexPath
