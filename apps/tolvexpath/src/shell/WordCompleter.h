#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace TolvexPath {

class ShellContext;
struct ShellCommand;

/// What the last word of a line may become.
struct WordCompletions {
    struct Candidate {
        std::string word;     ///< not quoted
        bool mayGoOn = false; ///< a folder, behind which more may follow
    };
    std::size_t start = 0;             ///< of the word on the line, with its quotes
    std::vector<Candidate> candidates; ///< sorted
    bool isQuoted = false;             ///< the candidates stand on the line as they are
};

/// Completes commands, what belongs to them, folders and names on the path.
class WordCompleter {
public:
    /// `context` outlives it.
    explicit WordCompleter(ShellContext& context) noexcept : context(context) {}

    /// For the line up to the cursor.
    [[nodiscard]] WordCompletions Complete(std::string_view line) const;

    /// No more are given.
    static constexpr std::size_t mostCandidates = 1000;

private:
    void AddArguments(WordCompletions& completions, const ShellCommand& command, const std::string& word) const;
    void AddPathFolders(WordCompletions& completions, const std::string& word) const;
    void AddNames(WordCompletions& completions, const std::string& word) const;

    ShellContext& context;
};

} // namespace TolvexPath
