#include "manual/ShellCompletions.h"

#include "SearchOptions.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

namespace TolvexPath {

namespace {

/// Inside '...' and in an argument of _arguments, where brackets and colons have a meaning.
std::string Escape(std::string_view text) {
    std::string escaped;
    for (const char character : text) {
        if (character == '\'')
            escaped += "'\\''";
        else if (character == '[' || character == ']' || character == ':' || character == '\\')
            escaped += std::string("\\") + character;
        else
            escaped += character;
    }
    return escaped;
}

std::string GetOffer(const OptionOutline& option) {
    const ValueKind kind = option.value;
    if (kind == ValueKind::folder)
        return "_files -/";
    if (kind == ValueKind::words)
        return fmt::format(fmt::runtime(option.valueName == scopeValueName ? "_values -s , word {}" : "({})"),
                           fmt::join(option.words, " "));
    return kind == ValueKind::file ? "_files" : "()"; // no action at all would keep an option from being completed
}

/// The name of the function for a command; a blank cannot stand in it.
std::string GetFunction(const CommandOutline& program, const CommandOutline& command) {
    std::string path = command.path;
    std::ranges::replace(path, ' ', '_');
    return fmt::format("_{}{}{}", program.name, path.empty() ? "" : "_", path);
}

/// "--name=" takes its value behind the sign or in the next word.
std::string Spell(const OptionOutline& option, const std::string& name) {
    return option.value != ValueKind::none && name.starts_with("--") ? name + '=' : name;
}

/// An option may stand again only if it may be repeated; each of its names keeps away the others.
std::string DescribeOption(const OptionOutline& option) {
    std::string names;
    std::string list;
    for (const std::string& name : option.names) {
        names += (names.empty() ? "" : " ") + name;
        list.append(list.empty() ? "" : ",").append(Spell(option, name));
    }
    const std::string value =
        option.value == ValueKind::none ? "" : fmt::format(":{}:{}", option.valueName, GetOffer(option));
    const std::string text = fmt::format("'[{}]{}'", Escape(option.description), value);
    const std::string spelled = option.names.size() > 1 ? "{" + list + "}" : list;
    const std::string others = option.repeats ? "*" : "(" + names + ")";
    return fmt::format("'{}'{}{}", others, spelled, text);
}

std::string DescribeArgument(const OptionOutline& argument) {
    return fmt::format("'{}:{}:{}'", argument.repeats ? "*" : "", argument.names.front(), GetOffer(argument));
}

std::string MakeArguments(const CommandOutline& command) {
    std::string lines;
    for (const OptionOutline& option : command.options)
        lines += " \\\n        " + DescribeOption(option);
    for (const OptionOutline& argument : command.arguments)
        lines += " \\\n        " + DescribeArgument(argument);
    return lines;
}

std::string MakeChoice(const CommandOutline& program, const CommandOutline& command) {
    std::string descriptions;
    std::string calls;
    for (const CommandOutline& below : command.commands) {
        descriptions += fmt::format("                '{}:{}'\n", below.name, Escape(below.summary));
        calls += fmt::format("                {}) {} ;;\n", below.name, GetFunction(program, below));
    }
    return fmt::format(" \\\n        '1:command:->command' '*::argument:->argument'\n"
                       "    case $state in\n"
                       "        command)\n"
                       "            commands=(\n{}            )\n"
                       "            _describe command commands ;;\n"
                       "        argument)\n"
                       "            case $words[1] in\n{}            esac ;;\n"
                       "    esac\n",
                       descriptions, calls);
}

std::string MakeFunctions(const CommandOutline& program, const CommandOutline& command) {
    std::string functions;
    for (const CommandOutline& below : command.commands)
        functions += MakeFunctions(program, below);
    functions +=
        fmt::format("{}() {{\n    local context state state_descr line\n    local -a commands\n"
                    "    typeset -A opt_args\n    _arguments{}{}",
                    GetFunction(program, command), command.commands.empty() ? "" : " -C", MakeArguments(command));
    functions += command.commands.empty() ? "\n" : MakeChoice(program, command);
    return functions + "}\n\n";
}

} // namespace

std::string MakeZshCompletion(const CommandOutline& program) {
    return fmt::format("#compdef {0}\n# Completion for zsh. Made by the program itself from what its --help shows.\n\n"
                       "{1}_{0} \"$@\"\n",
                       program.name, MakeFunctions(program, program));
}

} // namespace TolvexPath
