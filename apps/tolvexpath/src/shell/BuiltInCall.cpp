#include "shell/BuiltInCall.h"

#include "UsageError.h"
#include "shell/Words.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace TolvexPath {

using TolvexArrays::ArrayOwner;

namespace {

constexpr std::string_view blanks = " \t\r\n";
constexpr std::string_view endsOfWord = " \t\r\n,)('\"]=#";

/// Reads a call from the front of a line.
class CallReader {
public:
    explicit CallReader(std::string_view line) : rest(line) {}

    [[nodiscard]] BuiltInCall Read() && {
        if (Takes('['))
            ReadOutputs();
        call.name = TakeName("a function's name");
        Expect('(');
        if (!Takes(')'))
            ReadInputs();
        ReadEnd();
        return std::move(call);
    }

private:
    void ReadOutputs() {
        do {
            std::string name = TakeName("an output's name");
            if (std::ranges::find(call.outputs, name) != call.outputs.end())
                throw UsageError(fmt::format("two outputs are called '{}'", name));
            call.outputs.push_back(std::move(name));
        } while (Takes(','));
        Expect(']');
        Expect('=');
    }

    void ReadInputs() {
        do
            call.inputs.push_back(ReadInput());
        while (Takes(','));
        if (!Takes(')'))
            Refuse("',' or ')' is missing");
    }

    ArrayOwner ReadInput() {
        if (Takes('\''))
            return TolvexArrays::MakeCharacterVector(ReadText('\''));
        if (Takes('"'))
            return TolvexArrays::MakeStringScalar(ReadText('"'));
        const std::string_view word = rest.substr(0, rest.find_first_of(endsOfWord));
        if (word.empty())
            Refuse("an input is missing");
        auto input = MakeInput(word);
        rest.remove_prefix(word.size());
        return input;
    }

    static ArrayOwner MakeInput(std::string_view word) {
        if (word == "true" || word == "false")
            return TolvexArrays::MakeLogicalScalar(word == "true");
        double number = 0;
        const std::string_view digits = word.substr(word.starts_with('+') ? 1 : 0);
        const char* const end = digits.data() + digits.size();
        const auto read = std::from_chars(digits.data(), end, number);
        const bool hasDigit = digits.find_first_of("0123456789") != std::string_view::npos; // else a word such as inf
        if (read.ec != std::errc() || read.ptr != end || !hasDigit || word.starts_with("+-"))
            throw UsageError(
                fmt::format("'{}' is no input: texts need quotes, else it has to be a number, true or false", word));
        return TolvexArrays::MakeNumericScalar(number);
    }

    /// Behind its opening quote.
    Tolvex::ustring ReadText(char quote) {
        std::string text;
        for (;;) {
            const std::size_t end = rest.find(quote);
            if (end == std::string_view::npos)
                throw UsageError("the line ends inside a quoted text");
            text += rest.substr(0, end);
            rest.remove_prefix(end + 1);
            if (!rest.starts_with(quote))
                return Tolvex::FromUtf8(text);
            text += quote;
            rest.remove_prefix(1);
        }
    }

    void ReadEnd() {
        SkipBlanks();
        constexpr std::string_view json = "--json";
        call.wantsJson = rest.starts_with(json);
        rest.remove_prefix(call.wantsJson ? json.size() : 0);
        SkipBlanks();
        if (!rest.empty() && !rest.starts_with('#'))
            Refuse("the call has ended; only --json may follow");
    }

    std::string TakeName(std::string_view what) {
        SkipBlanks();
        std::string name(ReadName(rest));
        if (name.empty())
            Refuse(fmt::format("{} is missing", what));
        rest.remove_prefix(name.size());
        return name;
    }

    bool Takes(char sign) {
        SkipBlanks();
        const bool isThere = rest.starts_with(sign);
        rest.remove_prefix(isThere ? 1 : 0);
        // What stands in quotes is taken with its blanks.
        if (isThere && sign != '\'' && sign != '"')
            SkipBlanks();
        return isThere;
    }

    void Expect(char sign) {
        if (!Takes(sign))
            Refuse(fmt::format("'{}' is missing", sign));
    }

    void SkipBlanks() { rest.remove_prefix(std::min(rest.find_first_not_of(blanks), rest.size())); }

    [[noreturn]] void Refuse(std::string_view fault) const {
        throw UsageError(rest.empty() ? fmt::format("{} at the end of the line", fault)
                                      : fmt::format("{}; found '{}'", fault, rest));
    }

    std::string_view rest;
    BuiltInCall call;
};

} // namespace

bool IsBuiltInCall(std::string_view line) {
    const std::size_t start = line.find_first_not_of(blanks);
    return start != std::string_view::npos && (line[start] == '[' || GetCalledName(line));
}

BuiltInCall ReadBuiltInCall(std::string_view line) {
    return CallReader(line).Read();
}

std::optional<OpenCall> ReadOpenCall(std::string_view line) {
    const std::size_t start = std::min(line.find_first_not_of(blanks), line.size());
    const bool namesOutputs = line.substr(start).starts_with('[');
    const std::size_t call = namesOutputs ? std::min(line.find('='), line.size() - 1) + 1 : start;
    const auto name = GetCalledName(line.substr(call));
    if (!name)
        return std::nullopt;
    const auto bracket = static_cast<std::size_t>(name->data() - line.data()) + name->size();
    OpenCall open{.name = *name, .inputStart = line.find_first_not_of(blanks, bracket + 1), .quote = 0, .text = {}};
    if (open.inputStart == std::string_view::npos) {
        open.inputStart = line.size();
        return open;
    }
    open.quote = line[open.inputStart];
    open.text = line.substr(open.inputStart + 1);
    const bool isOpenText = (open.quote == '\'' || open.quote == '"') && open.text.find(open.quote) == open.text.npos;
    return isOpenText ? std::optional(open) : std::nullopt;
}

} // namespace TolvexPath
