#include "shell/WordCompleter.h"

#include "shell/BuiltInCall.h"
#include "shell/BuiltInFunctions.h"
#include "shell/ShellCommand.h"
#include "shell/ShellContext.h"
#include "shell/Words.h"

#include "foundation/text/CaseFolding.h"
#include "path_utilities/PathText.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <sstream>

namespace TolvexPath {

namespace {

using Candidate = WordCompletions::Candidate;

bool HoldsControl(std::string_view word) {
    return std::ranges::any_of(word, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; });
}

/// What cannot be typed in is left out.
void AddIfItBegins(WordCompletions& completions, std::string_view word, std::string candidate, bool mayGoOn = false) {
    if (candidate.starts_with(word) && !HoldsControl(candidate))
        completions.candidates.push_back({std::move(candidate), mayGoOn});
}

void AddCommands(WordCompletions& completions, std::string_view word) {
    for (const ShellCommand& command : GetShellCommands())
        AddIfItBegins(completions, word, std::string(command.name));
}

void AddFunctions(WordCompletions& completions, std::string_view word, std::string_view end) {
    for (const BuiltInFunction& function : GetBuiltInFunctions())
        AddIfItBegins(completions, word, std::string(function.name).append(end), !end.empty());
}

/// The options of the function that is being called, whatever the case of what was typed in.
WordCompletions CompleteInput(const OpenCall& call) {
    WordCompletions completions{.start = call.inputStart, .candidates = {}, .isQuoted = true};
    const char quote = call.quote == 0 ? '\'' : call.quote;
    const BuiltInFunction* const function = FindBuiltInFunction(call.name);
    std::istringstream options{std::string(function == nullptr ? "" : function->options)};
    for (std::string option; options >> option;)
        if (Tolvex::EqualIgnoringCase(Tolvex::FromUtf8(option.substr(0, call.text.size())),
                                      Tolvex::FromUtf8(call.text)))
            completions.candidates.push_back({quote + option + quote});
    std::ranges::sort(completions.candidates, {}, &Candidate::word);
    return completions;
}

/// Folders on the disk; hidden ones when the word begins with their dot.
void AddFolders(WordCompletions& completions, const std::string& word) {
    namespace fs = std::filesystem;
    const std::string parent = word.substr(0, word.rfind('/') + 1);
    const bool wantsHidden = word.substr(parent.size()).starts_with('.');
    std::error_code error;
    for (auto at = fs::directory_iterator(parent.empty() ? "." : parent, error); at != fs::directory_iterator();
         at.increment(error)) {
        std::error_code unknown;
        const std::string name = at->path().filename();
        if ((wantsHidden || !name.starts_with('.')) && at->is_directory(unknown))
            AddIfItBegins(completions, word, parent + name + '/', true);
        if (error || completions.candidates.size() >= WordCompleter::mostCandidates)
            return;
    }
}

} // namespace

WordCompletions WordCompleter::Complete(std::string_view line) const {
    if (const auto call = ReadOpenCall(line))
        return CompleteInput(*call);
    const LineWords read = ReadWords(line);
    WordCompletions completions;
    completions.start = read.endsInside ? read.lastStart : line.size();
    const std::string word = read.endsInside ? read.words.back() : "";
    if (read.words.size() == (read.endsInside ? 1 : 0)) {
        AddCommands(completions, word);
        AddFunctions(completions, word, "(");
    } else if (const ShellCommand* const command = FindShellCommand(read.words.front())) {
        AddArguments(completions, *command, word);
    }
    std::ranges::sort(completions.candidates, {}, &Candidate::word);
    return completions;
}

void WordCompleter::AddArguments(WordCompletions& completions, const ShellCommand& command,
                                 const std::string& word) const {
    std::istringstream words{std::string(command.words)};
    for (std::string known; words >> known;)
        if (!known.starts_with("--") || word.starts_with('-'))
            AddIfItBegins(completions, word, known);
    switch (command.completion) {
    case Completion::nothing:
        return;
    case Completion::commands:
        AddCommands(completions, word);
        return AddFunctions(completions, word, "");
    case Completion::folders:
        return AddFolders(completions, word);
    case Completion::pathFolders:
        return AddPathFolders(completions, word);
    case Completion::names:
        return AddNames(completions, word);
    case Completion::mementos:
        for (const auto& saved : context.mementos)
            AddIfItBegins(completions, word, saved.first);
    }
}

void WordCompleter::AddPathFolders(WordCompletions& completions, const std::string& word) const {
    for (const auto& folder : *context.GetManager().GetPathIRIs())
        AddIfItBegins(completions, word, Tolvex::ToUtf8(PathManagement::GetStringFromIRI(folder)));
}

void WordCompleter::AddNames(WordCompletions& completions, const std::string& word) const {
    const Tolvex::ustring begin = Tolvex::FromUtf8(word);
    std::set<Tolvex::ustring_view> names; // of items that the entries keep
    const auto entries = context.GetManager().GetPath()->GetMainEntries();
    for (const auto& entry : *entries)
        for (const auto& item : *entry->GetPathItems())
            if (names.size() < mostCandidates && item->GetKind() != Tolvex::ItemKind::other &&
                item->GetStem().starts_with(begin))
                names.insert(item->GetStem());
    for (const auto name : names)
        AddIfItBegins(completions, word, Tolvex::ToUtf8(name));
}

} // namespace TolvexPath
