#pragma once

#include "LineReader.h"

#include <optional>
#include <string>

namespace TolvexPath {

/// Where the shell's lines come from.
class LineSource {
public:
    virtual ~LineSource() = default;

    /// The next line; no value at the end. Throws std::system_error.
    [[nodiscard]] virtual std::optional<std::string> Next() = 0;
    /// Where the last line came from, for messages; empty when nobody has to be told.
    [[nodiscard]] virtual std::string GetPlace() const = 0;
};

/// Lines of the standard input, counted.
class ScriptLines final : public LineSource {
public:
    ScriptLines() : lines(InputFile("-")) {}
    [[nodiscard]] std::optional<std::string> Next() override;
    [[nodiscard]] std::string GetPlace() const override;

private:
    LineReader lines;
};

} // namespace TolvexPath
