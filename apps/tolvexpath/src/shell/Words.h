#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace TolvexPath {

/// The words of a line. Blanks separate them. '...' takes everything as it is; "..." everything but \" and \\, which
/// stand for the second character; elsewhere a backslash takes the character behind it as it is. A word that begins
/// with # and all behind it is left out. Nothing else is special.
struct LineWords {
    std::vector<std::string> words;
    std::size_t lastStart = 0; ///< where the last word begins on the line, with its quotes
    bool endsInside = false;   ///< the line ends in the last word; false behind a blank, and where there is no word
    bool isOpen = false;       ///< a quote is not closed, or a backslash stands last
};

[[nodiscard]] LineWords ReadWords(std::string_view line);

/// The words of a whole line. Throws UsageError when a quote is open at its end.
[[nodiscard]] std::vector<std::string> SplitWords(std::string_view line);

/// `text` as a word, or the beginning of one, that reads as `text`.
[[nodiscard]] std::string QuoteWord(std::string_view text);

/// The letters, digits and underscores at the front of a text, if the first is no digit.
[[nodiscard]] std::string_view ReadName(std::string_view text);

/// The name in front of the bracket where a line is a call, as in "Name('option')"; no value for any other line.
[[nodiscard]] std::optional<std::string_view> GetCalledName(std::string_view line);

} // namespace TolvexPath
