#include "Conversation.h"

#include "Finder.h"
#include "FoundFiles.h"
#include "LineReader.h"
#include "Messages.h"
#include "Output.h"
#include "QueryReader.h"
#include "UsageError.h"

#include <fmt/format.h>

namespace TolvexPath {

namespace {

bool IsBlank(std::string_view line) {
    return line.find_first_not_of(" \t\r") == std::string_view::npos;
}

} // namespace

ExitCode AnswerQuestions(const Finder& finder, const std::string& fileName, Output& output) {
    LineReader lines{InputFile(fileName)};
    for (;;) {
        if (!lines.IsLineReady())
            output.Flush();
        const auto line = lines.Next();
        if (!line)
            return ExitCode::success;
        if (IsBlank(*line))
            continue;
        try {
            WriteFoundJson(output, finder.Answer(ReadQuestion(*line)));
        } catch (const UsageError& error) {
            PrintMessage(fmt::format("{}, line {}: {}; this line and the rest were not answered",
                                     lines.GetDisplayName(), lines.GetLineNumber(), error.what()));
            return ExitCode::failure;
        }
    }
}

} // namespace TolvexPath
