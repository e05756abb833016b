#pragma once

#include <functional>
#include <string>
#include <thread>

namespace TolvexPath {

/// Shows on a terminal how far a piece of work has come, from its second second on, and wipes the line at the end.
/// Where the standard error output is no terminal it does nothing at all, not even start its thread.
class ProgressLine {
public:
    /// `describe` is called from another thread and has to stay callable as long as this object lives.
    explicit ProgressLine(std::function<std::string()> describe);

private:
    std::jthread thread; // stopped and joined by its destructor
};

} // namespace TolvexPath
