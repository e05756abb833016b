#pragma once

#include "ExitCode.h"

#include <string>

namespace CLI {
class App;
}

namespace TolvexPath {

/// One command of the program. Made once, declared once, run at most once.
class ICommand {
public:
    virtual ~ICommand() = default;

    [[nodiscard]] virtual std::string GetName() const = 0;
    /// One line for the list of commands.
    [[nodiscard]] virtual std::string GetSummary() const = 0;

    /// Declares the command's arguments. They are filled in while the command line is parsed and live in this object.
    virtual void DeclareArguments(CLI::App& arguments) = 0;

    /// Does the work. Throws UsageError for arguments that do not fit together.
    [[nodiscard]] virtual ExitCode Run() = 0;
};

} // namespace TolvexPath
