#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace TolvexPath {

/// What is offered where a value has to be given.
enum class ValueKind { none, file, folder, words, text };

/// An option, or an argument that goes by its place.
struct OptionOutline {
    std::vector<std::string> names; ///< with their dashes, short ones first; one without dashes for an argument
    std::string valueName;          ///< empty for a flag
    std::string description;
    ValueKind value = ValueKind::none; ///< of a flag
    std::vector<std::string> words;    ///< of a value that is one or more of these, with commas between
    bool repeats = false;
    bool required = false;
};

/// What a command's declaration says: the one source of its help, its part of the manual page and its completion.
struct CommandOutline {
    std::string path; ///< the names of the commands that lead to it, with blanks between them; empty for the program
    std::string name; ///< the last of them; the program's own for the program
    std::string summary;
    std::string footer; ///< paragraphs; lines that begin with a blank stay as they are
    std::vector<OptionOutline> options;
    std::vector<OptionOutline> arguments;
    std::vector<CommandOutline> commands;
};

[[nodiscard]] CommandOutline MakeOutline(const CLI::App& program);

} // namespace TolvexPath
