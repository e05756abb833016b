#pragma once

#include "NamesOnPath.h"
#include "Question.h"

#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
}

namespace TolvexPath {

/// What --match and --scope call their values in the help.
inline constexpr std::string_view matchValueName = "HOW";
inline constexpr std::string_view scopeValueName = "KINDS";

/// The words that stand for a value by its name in the help; none for values of any other name. Those of --scope may be
/// given several at once, with commas.
[[nodiscard]] std::vector<std::string> ListWords(std::string_view valueName);

/// The options that say how files are looked for: --all, --ext, --match and --scope.
class SearchOptions {
public:
    /// Declares the options, which fill this object; it has to stay where it is.
    void DeclareOptions(CLI::App& arguments);

    /// As above without --all, for commands that ask about more than one name.
    void DeclareRules(CLI::App& arguments);

    /// Throws UsageError for values that mean nothing.
    [[nodiscard]] SearchDefaults GetDefaults() const;

    /// The same for questions about all names. Throws also for kinds of folders whose files are not called from
    /// elsewhere.
    [[nodiscard]] NameRules GetNameRules() const;

private:
    bool all = false;
    std::optional<std::string> extensions; // as given, with commas
    std::string match = "native";
    std::optional<std::string> scope; // as given, with commas
};

} // namespace TolvexPath
