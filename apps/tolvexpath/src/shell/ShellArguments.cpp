#include "shell/ShellArguments.h"

#include "UsageError.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace TolvexPath {

ShellArguments::ShellArguments(std::vector<std::string> given) {
    bool mayBeOption = true;
    for (std::string& word : given) {
        if (mayBeOption && word == "--") {
            mayBeOption = false;
            continue;
        }
        const bool isOption = mayBeOption && word.starts_with("--");
        words.push_back({std::move(word), isOption});
    }
}

bool ShellArguments::TakeFlag(std::string_view name) {
    return std::erase_if(words, [name](const Word& word) { return word.isOption && word.text == name; }) > 0;
}

std::optional<std::string> ShellArguments::TakeOption(std::string_view name) {
    const auto option = std::ranges::find_if(words, [name](const Word& w) { return w.isOption && w.text == name; });
    if (option == words.end())
        return std::nullopt;
    const auto value = std::next(option);
    if (value == words.end())
        throw UsageError(fmt::format("{} needs a value", name));
    std::string text = std::move(value->text);
    words.erase(option, std::next(value));
    return text;
}

std::string ShellArguments::Take(std::string_view what) {
    if (auto word = TakeOptional())
        return std::move(*word);
    throw UsageError(fmt::format("{} is missing", what));
}

std::optional<std::string> ShellArguments::TakeOptional() {
    CheckOptions();
    if (words.empty())
        return std::nullopt;
    std::string text = std::move(words.front().text);
    words.erase(words.begin());
    return text;
}

std::vector<std::string> ShellArguments::TakeAll() {
    std::vector<std::string> texts;
    while (auto word = TakeOptional())
        texts.push_back(std::move(*word));
    return texts;
}

void ShellArguments::CheckNothingIsLeft() const {
    CheckOptions();
    if (!words.empty())
        throw UsageError(fmt::format("'{}' is too much", words.front().text));
}

void ShellArguments::CheckOptions() const {
    const auto option = std::ranges::find_if(words, &Word::isOption);
    if (option != words.end())
        throw UsageError(fmt::format("'{}' is no option of this command", option->text));
}

} // namespace TolvexPath
