#pragma once

#include "shell/LineSource.h"
#include "shell/ShellContext.h"

namespace TolvexPath {

/// Does what lines say, one after the other.
class Shell {
public:
    explicit Shell(ShellContext& context) noexcept : context(context) {}

    /// Until the lines end, or one says so, or, if that is wanted, one fails. Whatever a line wrote is written out
    /// before the next is waited for. True when no line failed.
    [[nodiscard]] bool Run(LineSource& lines, bool stopsAtFailure);

private:
    [[nodiscard]] bool Execute(std::string_view line);
    [[nodiscard]] bool ExecuteWords(std::string_view line);

    ShellContext& context;
};

} // namespace TolvexPath
