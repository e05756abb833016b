#include "manual/ManualPage.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <sstream>
#include <string_view>
#include <utility>

namespace TolvexPath {

namespace {

std::string Escape(std::string_view text) {
    std::string escaped;
    for (const char character : text) {
        if (character == '\\')
            escaped += "\\e";
        else if (character == '-')
            escaped += "\\-"; // else it may be shown as another dash, which cannot be pasted into a shell
        else
            escaped += character;
    }
    const bool isRequest = escaped.starts_with('.') || escaped.starts_with('\'');
    return isRequest ? "\\&" + escaped : escaped;
}

std::string ToUpper(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

/// Writes paragraphs: filled, but for stretches of lines that begin with a blank.
class ParagraphWriter {
public:
    /// `followsText`: a break has to stand before the first paragraph.
    ParagraphWriter(std::string& page, bool followsText) : page(page), isAtBreak(followsText) {}

    void Write(const std::string& text) {
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);)
            WriteLine(line);
        SetVerbatim(false);
    }

private:
    void WriteLine(std::string_view line) {
        const auto start = line.find_first_not_of(' ');
        if (start == std::string_view::npos) {
            isAtBreak = true;
            return;
        }
        SetVerbatim(start > 0);
        if (std::exchange(isAtBreak, false))
            page += isVerbatim ? "\n" : ".PP\n";
        page += Escape(line.substr(isVerbatim ? std::min<std::size_t>(start, 2) : 0)) + '\n';
    }

    void SetVerbatim(bool verbatim) {
        if (verbatim == std::exchange(isVerbatim, verbatim))
            return;
        page += verbatim ? ".PP\n.RS 2\n.nf\n" : ".fi\n.RE\n";
        isAtBreak = !verbatim;
    }

    std::string& page;
    bool isVerbatim = false;
    bool isAtBreak;
};

std::string JoinNames(const OptionOutline& option) {
    std::string joined;
    for (const std::string& name : option.names)
        joined += fmt::format("{}\\fB{}\\fR", joined.empty() ? "" : ", ", Escape(name));
    return joined;
}

void WriteOptions(std::string& page, const std::vector<OptionOutline>& options) {
    for (const OptionOutline& option : options) {
        const bool isArgument = !option.names.front().starts_with('-');
        const std::string value = option.valueName.empty() ? "" : fmt::format("\\fI{}\\fR", Escape(option.valueName));
        const std::string names = isArgument ? "" : JoinNames(option) + (value.empty() ? "" : " ");
        page += fmt::format(".TP\n{}{}\n{}.\n", names, value, Escape(option.description));
    }
}

std::string MakeSynopsis(const CommandOutline& program, const CommandOutline& command) {
    std::string synopsis = fmt::format(".B {} {}\n", program.name, Escape(command.path));
    for (const OptionOutline& argument : command.arguments)
        synopsis += fmt::format("{}\\fI{}\\fR{}{}\n", argument.required ? "" : "[", Escape(argument.valueName),
                                argument.repeats ? "..." : "", argument.required ? "" : "]");
    return synopsis + "[\\fIoptions\\fR]\n";
}

/// Calls `visit` with each command that takes arguments itself, in the order of the help.
template <class Visit>
void ForEachCommand(const CommandOutline& command, const Visit& visit) {
    for (const CommandOutline& below : command.commands) {
        visit(below);
        ForEachCommand(below, visit);
    }
}

void WriteCommand(std::string& page, const CommandOutline& program, const CommandOutline& command) {
    page += fmt::format(".SS {}\n{}.\n", Escape(command.path), Escape(command.summary));
    if (command.commands.empty())
        page += ".PP\n" + MakeSynopsis(program, command);
    WriteOptions(page, command.arguments);
    WriteOptions(page, command.options);
    ParagraphWriter(page, true).Write(command.footer);
}

} // namespace

std::string MakeManualPage(const CommandOutline& program, const std::string& version) {
    std::string page = ".\\\" Made by the program itself from what its --help shows.\n";
    page += fmt::format(".TH {} 1 \"\" \"{} {}\"\n", ToUpper(program.name), program.name, version);
    page += fmt::format(".SH NAME\n{} \\- {}\n.SH SYNOPSIS\n", program.name, Escape(program.summary));
    ForEachCommand(program, [&](const CommandOutline& command) {
        if (command.commands.empty())
            page += MakeSynopsis(program, command) + ".br\n";
    });
    page += fmt::format(".B {} \\-\\-version\n.SH OPTIONS\n", program.name);
    WriteOptions(page, program.options);
    page += ".SH COMMANDS\n";
    ForEachCommand(program, [&](const CommandOutline& command) { WriteCommand(page, program, command); });
    page += ".SH NOTES\n";
    ParagraphWriter(page, false).Write(program.footer);
    return page;
}

} // namespace TolvexPath
