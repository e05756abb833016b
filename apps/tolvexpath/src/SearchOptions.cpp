#include "SearchOptions.h"

#include "KindNames.h"
#include "UsageError.h"

#include "foundation/environment/CodeFiles.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <span>
#include <string_view>
#include <utility>

namespace TolvexPath {

using PathManagement::FilenameMatchingPolicy;
using PathManagement::PathEntryType;
using PathManagement::SearchScope;

namespace {

template <typename Value>
using Named = std::pair<std::string_view, Value>;

constexpr std::array<Named<FilenameMatchingPolicy>, 3> policies = {{
    {"exact", FilenameMatchingPolicy::exact},
    {"ignore-case", FilenameMatchingPolicy::ignoreCase},
    {"native", FilenameMatchingPolicy::native},
}};

/// `alsoKnown`: words, each with ", " behind it, that somebody else has tried before.
template <typename Value, std::size_t count>
Value Choose(const std::array<Named<Value>, count>& choices, std::string_view name, std::string_view option,
             std::string_view alsoKnown = "") {
    const auto chosen = std::find_if(choices.begin(), choices.end(), [name](const auto& c) { return c.first == name; });
    if (chosen != choices.end())
        return chosen->second;
    std::string known;
    for (const auto& choice : choices)
        known += fmt::format("{}{}", known.empty() ? "" : ", ", choice.first);
    throw UsageError(fmt::format("{}: '{}' is none of {}{}", option, name, alsoKnown, known));
}

std::vector<std::string_view> SplitAtCommas(std::string_view text) {
    std::vector<std::string_view> parts;
    for (std::size_t comma = text.find(','); comma != std::string_view::npos; comma = text.find(',')) {
        parts.push_back(text.substr(0, comma));
        text.remove_prefix(comma + 1);
    }
    parts.push_back(text);
    return parts;
}

/// An empty text is the extension of files without one.
std::vector<Tolvex::ustring> ReadExtensions(std::string_view text) {
    std::vector<Tolvex::ustring> extensions;
    for (const std::string_view part : SplitAtCommas(text)) {
        if (!part.empty() && part.front() != '.')
            throw UsageError(fmt::format("--ext: '{0}' has no dot; write '.{0}'", part));
        extensions.push_back(Tolvex::FromUtf8(part));
    }
    return extensions;
}

SearchScope ReadScope(std::string_view text) {
    if (text == "all")
        return SearchScope::All();
    SearchScope scope;
    for (const std::string_view part : SplitAtCommas(text))
        scope.Add(Choose(kindNames, part, "--scope", text == part ? "all, " : ""));
    return scope;
}

std::string ListUsualExtensions() {
    std::string list;
    for (const Tolvex::ustring& extension : Tolvex::GetCodeFileExtensions())
        list += (list.empty() ? "" : ",") + Tolvex::ToUtf8(extension);
    return list;
}

} // namespace

std::vector<std::string> ListWords(std::string_view valueName) {
    std::vector<std::string> words;
    if (valueName == matchValueName)
        for (const auto& [word, policy] : policies)
            words.emplace_back(word);
    if (valueName == scopeValueName) {
        words.emplace_back("all");
        for (const auto& [word, kind] : kindNames)
            words.emplace_back(word);
    }
    return words;
}

void SearchOptions::DeclareOptions(CLI::App& arguments) {
    arguments.add_flag("-a,--all", all, "Give every file that answers, winners first");
    DeclareRules(arguments);
}

void SearchOptions::DeclareRules(CLI::App& arguments) {
    arguments.add_option("--ext", extensions, "Wanted extensions, most wanted first [" + ListUsualExtensions() + "]")
        ->type_name(".A,.B");
    arguments
        .add_option("--match", match, "How names compare: exact, ignore-case or native, as the disk does [native]")
        ->type_name(std::string(matchValueName));
    arguments
        .add_option("--scope", scope, "Kinds of folders: all, or some of main,package,method,private,udd,resources")
        ->type_name(std::string(scopeValueName));
}

SearchDefaults SearchOptions::GetDefaults() const {
    const auto usual = Tolvex::GetCodeFileExtensions();
    SearchDefaults defaults;
    defaults.extensions = extensions ? ReadExtensions(*extensions) : std::vector(usual.begin(), usual.end());
    defaults.policy = Choose(policies, match, "--match");
    if (scope)
        defaults.scope = ReadScope(*scope);
    defaults.all = all;
    return defaults;
}

NameRules SearchOptions::GetNameRules() const {
    SearchDefaults defaults = GetDefaults();
    NameRules rules{.policy = defaults.policy,
                    .extensions = std::move(defaults.extensions),
                    .scope = defaults.scope.value_or(namedKinds)};
    for (const PathEntryType kind : {PathEntryType::privateFolder, PathEntryType::resourcesFolder})
        if (rules.scope.Contains(kind))
            throw UsageError("--scope: files of private and resources folders hide nothing; name main, package, method "
                             "or udd");
    return rules;
}

} // namespace TolvexPath
