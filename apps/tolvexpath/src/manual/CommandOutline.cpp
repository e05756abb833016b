#include "manual/CommandOutline.h"

#include "SearchOptions.h"

#include <CLI/CLI.hpp>

#include <array>
#include <string_view>
#include <utility>

namespace TolvexPath {

namespace {

ValueKind GetKind(std::string_view valueName) {
    constexpr std::array<std::pair<std::string_view, ValueKind>, 4> kinds = {{
        {"", ValueKind::none},
        {"FILE", ValueKind::file},
        {"FOLDER", ValueKind::folder},
        {"ROOT", ValueKind::folder},
    }};
    for (const auto& [name, kind] : kinds)
        if (name == valueName)
            return kind;
    return ValueKind::text;
}

OptionOutline MakeOption(const CLI::Option& option) {
    OptionOutline outline;
    outline.description = option.get_description();
    outline.repeats =
        option.get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll && option.get_items_expected_max() != 0;
    outline.required = option.get_required();
    if (option.get_positional()) {
        outline.names = {option.get_name(true)};
        outline.valueName = outline.names.front();
    } else {
        for (const std::string& name : option.get_snames())
            outline.names.push_back('-' + name);
        for (const std::string& name : option.get_lnames())
            outline.names.push_back("--" + name);
        outline.valueName = option.get_items_expected_max() == 0 ? "" : option.get_type_name();
    }
    outline.words = ListWords(outline.valueName);
    outline.value = outline.words.empty() ? GetKind(outline.valueName) : ValueKind::words;
    return outline;
}

CommandOutline MakeCommand(const CLI::App& command, const std::string& path) {
    CommandOutline outline;
    outline.path = path;
    outline.name = command.get_name();
    outline.summary = command.get_description();
    outline.footer = command.get_footer();
    for (const CLI::Option* const option : command.get_options()) {
        auto& list = option->get_positional() ? outline.arguments : outline.options;
        if (!option->get_group().empty()) // else it is hidden
            list.push_back(MakeOption(*option));
    }
    for (const CLI::App* const below : command.get_subcommands([](const CLI::App*) { return true; }))
        outline.commands.push_back(
            MakeCommand(*below, path.empty() ? below->get_name() : path + ' ' + below->get_name()));
    return outline;
}

} // namespace

CommandOutline MakeOutline(const CLI::App& program) {
    return MakeCommand(program, "");
}

} // namespace TolvexPath
