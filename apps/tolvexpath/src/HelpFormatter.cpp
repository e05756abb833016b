#include "HelpFormatter.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <string>
#include <string_view>

namespace TolvexPath {

namespace {

constexpr std::size_t lineWidth = 79; // a terminal's last column stays free
constexpr std::size_t descriptionColumn = 28;

/// The text in lines that begin in the description's column; the first begins where `column` says.
std::string Wrap(std::string_view text, std::size_t column) {
    std::string wrapped;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        const bool isFirst = wrapped.empty();
        if (isFirst ? column >= descriptionColumn : column + 1 + end > lineWidth) {
            wrapped += '\n' + std::string(descriptionColumn, ' ');
            column = descriptionColumn;
        } else {
            const std::size_t blanks = isFirst ? descriptionColumn - column : 1;
            wrapped.append(blanks, ' ');
            column += blanks;
        }
        wrapped += text.substr(0, end);
        column += end;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return wrapped;
}

std::string ListNames(const std::set<CLI::Option*>& options) {
    std::string names;
    for (const CLI::Option* const option : options)
        names += (names.empty() ? "" : ", ") + option->get_name();
    return names;
}

class HelpFormatter final : public CLI::Formatter {
public:
    HelpFormatter() {
        label("Positionals", "Arguments");
        label("SUBCOMMAND", "COMMAND");
    }

    [[nodiscard]] std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override {
        std::string help = Formatter::make_help(app, std::move(name), mode);
        for (std::size_t gap = help.find("\n\n\n"); gap != std::string::npos; gap = help.find("\n\n\n"))
            help.erase(gap, 1);
        return help;
    }

    [[nodiscard]] std::string make_description(const CLI::App* app) const override {
        return Formatter::make_description(app) + '\n';
    }

    [[nodiscard]] std::string make_option(const CLI::Option* option, bool isPositional) const override {
        return MakeRow(make_option_name(option, isPositional) + make_option_opts(option), make_option_desc(option));
    }

    [[nodiscard]] std::string make_subcommand(const CLI::App* command) const override {
        return MakeRow(command->get_name(), command->get_description());
    }

    [[nodiscard]] std::string make_option_name(const CLI::Option* option, bool isPositional) const override {
        return CLI::detail::find_and_replace(Formatter::make_option_name(option, isPositional), ",", ", ");
    }

    [[nodiscard]] std::string make_option_opts(const CLI::Option* option) const override {
        return option->get_type_size() == 0 || option->get_type_name().empty() ? "" : ' ' + option->get_type_name();
    }

    [[nodiscard]] std::string make_option_desc(const CLI::Option* option) const override {
        std::string description = option->get_description();
        if (!option->get_needs().empty())
            description += "; needs " + ListNames(option->get_needs());
        if (!option->get_excludes().empty())
            description += "; not with " + ListNames(option->get_excludes());
        return description;
    }

private:
    static std::string MakeRow(const std::string& name, const std::string& description) {
        const std::string left = "  " + name;
        // Two blanks at least in between.
        return left + Wrap(description, left.size() + 2 > descriptionColumn ? descriptionColumn : left.size()) + '\n';
    }
};

} // namespace

std::shared_ptr<CLI::FormatterBase> CreateHelpFormatter() {
    return std::make_shared<HelpFormatter>();
}

} // namespace TolvexPath
