#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace TolvexPath {

/// The words behind a command's name, taken one after the other. A word that begins with "--" is an option, unless
/// "--" alone stood in front of it. Everything throws UsageError where something is missing or too much.
class ShellArguments {
public:
    explicit ShellArguments(std::vector<std::string> words);

    /// Whether the option is there; takes it out.
    [[nodiscard]] bool TakeFlag(std::string_view name);
    /// The word behind the option, if it is there; takes out both.
    [[nodiscard]] std::optional<std::string> TakeOption(std::string_view name);

    /// The next word that is no option; `what` names it to people.
    [[nodiscard]] std::string Take(std::string_view what);
    /// The same, if there is one.
    [[nodiscard]] std::optional<std::string> TakeOptional();
    /// All that are left.
    [[nodiscard]] std::vector<std::string> TakeAll();

    /// REQUIRES: every option was asked for.
    void CheckNothingIsLeft() const;

private:
    struct Word {
        std::string text;
        bool isOption;
    };
    void CheckOptions() const;

    std::vector<Word> words;
};

} // namespace TolvexPath
