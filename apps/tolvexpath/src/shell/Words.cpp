#include "shell/Words.h"

#include "UsageError.h"

#include <algorithm>

namespace TolvexPath {

namespace {

constexpr std::string_view blanks = " \t\r\n";
constexpr std::string_view specialCharacters = " \t\r\n'\"\\#";

bool IsBlank(char character) {
    return blanks.find(character) != std::string_view::npos;
}

bool IsLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') || character == '_';
}

bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

/// Reads words from the front of a text.
class WordReader {
public:
    explicit WordReader(std::string_view text) : text(text) {}

    [[nodiscard]] LineWords ReadAll() && {
        for (SkipBlanks(); position < text.size() && text[position] != '#'; SkipBlanks()) {
            result.lastStart = position;
            result.words.push_back(ReadWord());
            result.endsInside = position == text.size();
        }
        return std::move(result);
    }

private:
    void SkipBlanks() {
        while (position < text.size() && IsBlank(text[position]))
            ++position;
    }

    std::string ReadWord() {
        std::string word;
        while (position < text.size() && !IsBlank(text[position])) {
            const char character = text[position++];
            if (character == '\'')
                ReadPlainQuote(word);
            else if (character == '"')
                ReadQuote(word);
            else if (character == '\\')
                ReadEscaped(word);
            else
                word += character;
        }
        return word;
    }

    void ReadPlainQuote(std::string& word) {
        const std::size_t end = std::min(text.find('\'', position), text.size());
        word += text.substr(position, end - position);
        Close(end);
    }

    void ReadQuote(std::string& word) {
        while (position < text.size() && text[position] != '"') {
            const bool isEscape = text[position] == '\\' && position + 1 < text.size() &&
                                  (text[position + 1] == '"' || text[position + 1] == '\\');
            position += isEscape ? 1 : 0;
            word += text[position++];
        }
        Close(position);
    }

    void ReadEscaped(std::string& word) {
        if (position < text.size())
            word += text[position++];
        else
            result.isOpen = true;
    }

    void Close(std::size_t end) {
        result.isOpen = end == text.size();
        position = std::min(end + 1, text.size());
    }

    std::string_view text;
    std::size_t position = 0;
    LineWords result;
};

} // namespace

LineWords ReadWords(std::string_view line) {
    return WordReader(line).ReadAll();
}

std::vector<std::string> SplitWords(std::string_view line) {
    LineWords read = ReadWords(line);
    if (read.isOpen)
        throw UsageError("the line ends inside a quoted word");
    return std::move(read.words);
}

std::string QuoteWord(std::string_view text) {
    std::string quoted;
    for (const char character : text) {
        if (specialCharacters.find(character) != std::string_view::npos)
            quoted += '\\';
        quoted += character;
    }
    return quoted.empty() ? "''" : quoted;
}

std::string_view ReadName(std::string_view text) {
    const auto end = std::ranges::find_if_not(text, [](char c) { return IsLetter(c) || IsDigit(c); });
    return text.empty() || IsDigit(text.front()) ? "" : text.substr(0, static_cast<std::size_t>(end - text.begin()));
}

std::optional<std::string_view> GetCalledName(std::string_view line) {
    line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
    const std::string_view name = ReadName(line);
    if (name.empty() || !line.substr(name.size()).starts_with('('))
        return std::nullopt;
    return name;
}

} // namespace TolvexPath
