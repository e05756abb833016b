#include "manual/ShellCompletions.h"

#include <fmt/format.h>

namespace TolvexPath {

namespace {

constexpr const char* beginning = R"(# Completion for bash. Made by the program itself from what its --help shows.

_{0}_offer() {{
    mapfile -t COMPREPLY < <(compgen "$@" -- "$word")
}}

# The last of the words between commas; those before it stay.
_{0}_offer_listed() {{
    local last=${{word##*,}}
    mapfile -t COMPREPLY < <(compgen -P "${{word%"$last"}}" -W "$1" -- "$last")
}}

_{0}() {{
    local word=${{COMP_WORDS[COMP_CWORD]}} before=${{COMP_WORDS[COMP_CWORD - 1]}} command= i
    # "--name=value" comes as three words.
    [[ $before == "=" ]] && before=${{COMP_WORDS[COMP_CWORD - 2]}}
    [[ $word == "=" ]] && word=
    for ((i = 1; i < COMP_CWORD; i++)); do
        case "$command/${{COMP_WORDS[i]}}" in
)";

constexpr const char* valuesBeginning = R"(        esac
    done
    case "$command $before" in
)";

constexpr const char* wordsBeginning = R"(    esac
    case "$command $word" in
)";

constexpr const char* ending = R"(    esac
}}
complete -F _{0} {0}
)";

std::string MakeOffer(const std::string& program, const OptionOutline& option) {
    if (option.value == ValueKind::folder)
        return fmt::format("compopt -o filenames; _{}_offer -d", program);
    if (option.value == ValueKind::file)
        return fmt::format("compopt -o filenames; _{}_offer -f", program);
    if (option.value == ValueKind::words)
        return fmt::format("_{}_offer_listed \"{}\"", program, fmt::join(option.words, " "));
    return "COMPREPLY=()";
}

/// Calls `visit` with the program and each command.
template <class Visit>
void ForEach(const CommandOutline& command, const Visit& visit) {
    visit(command);
    for (const CommandOutline& below : command.commands)
        ForEach(below, visit);
}

std::string ListWords(const std::vector<OptionOutline>& options) {
    std::string words;
    for (const OptionOutline& option : options)
        for (const std::string& name : option.names)
            words += (words.empty() ? "" : " ") + name;
    return words;
}

std::string ListCommands(const CommandOutline& command) {
    std::string words;
    for (const CommandOutline& below : command.commands)
        words += (words.empty() ? "" : " ") + below.name;
    return words;
}

std::string MakeDescents(const CommandOutline& command) {
    std::string cases;
    for (const CommandOutline& below : command.commands)
        cases += fmt::format("            \"{}/{}\") command=\"{}\" ;;\n", command.path, below.name, below.path);
    return cases;
}

std::string MakeValues(const std::string& program, const CommandOutline& command) {
    std::string cases;
    for (const OptionOutline& option : command.options) {
        if (option.value == ValueKind::none)
            continue;
        std::string patterns;
        for (const std::string& name : option.names)
            patterns += fmt::format("{}\"{} {}\"", patterns.empty() ? "" : " | ", command.path, name);
        cases += fmt::format("        {}) {}; return ;;\n", patterns, MakeOffer(program, option));
    }
    return cases;
}

std::string MakeWords(const std::string& program, const CommandOutline& command) {
    std::string cases =
        fmt::format("        \"{} -\"*) _{}_offer -W \"{}\" ;;\n", command.path, program, ListWords(command.options));
    if (!command.commands.empty())
        cases +=
            fmt::format("        \"{} \"*) _{}_offer -W \"{}\" ;;\n", command.path, program, ListCommands(command));
    else if (!command.arguments.empty())
        cases += fmt::format("        \"{} \"*) {} ;;\n", command.path, MakeOffer(program, command.arguments.front()));
    return cases;
}

} // namespace

std::string MakeBashCompletion(const CommandOutline& program) {
    std::string descents;
    std::string values;
    std::string words;
    ForEach(program, [&](const CommandOutline& command) {
        descents += MakeDescents(command);
        values += MakeValues(program.name, command);
        // A longer path first: "cache write -" would fit "cache *", too.
        words.insert(0, MakeWords(program.name, command));
    });
    return fmt::format(fmt::runtime(beginning), program.name) + descents + valuesBeginning + values + wordsBeginning +
           words + fmt::format(fmt::runtime(ending), program.name);
}

} // namespace TolvexPath
