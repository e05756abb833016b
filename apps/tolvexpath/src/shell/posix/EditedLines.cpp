#include "shell/EditedLines.h"

#include "Messages.h"
#include "shell/Words.h"

#include <histedit.h>

#include <algorithm>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace TolvexPath {

namespace {

using Candidate = WordCompletions::Candidate;

constexpr int historySize = 1000; // lines

struct EditorCloser {
    void operator()(EditLine* editor) const noexcept { ::el_end(editor); }
};
struct HistoryCloser {
    void operator()(History* history) const noexcept { ::history_end(history); }
};

/// The editor reads and shows characters as the locale says; in the plain "C" locale it would lose most of them.
void ChooseCharacters() {
    std::setlocale(LC_CTYPE, "");
    if (MB_CUR_MAX == 1)
        std::setlocale(LC_CTYPE, "C.UTF-8");
}

int CountCharacters(std::string_view text) {
    return static_cast<int>(std::ranges::count_if(text, [](char c) { return (c & 0xC0) != 0x80; }));
}

std::string GetCommonBeginning(const std::vector<Candidate>& candidates) {
    std::string_view common = candidates.front().word;
    for (const Candidate& candidate : candidates) {
        const auto difference = std::ranges::mismatch(common, candidate.word);
        common = common.substr(0, static_cast<std::size_t>(difference.in1 - common.begin()));
    }
    while (!common.empty() && common.size() < candidates.front().word.size() &&
           (candidates.front().word[common.size()] & 0xC0) == 0x80)
        common.remove_suffix(1); // not within a character
    return std::string(common);
}

/// What the word becomes: all that the candidates have in common.
std::string MakeReplacement(const WordCompletions& completions) {
    const auto& candidates = completions.candidates;
    std::string common = GetCommonBeginning(candidates);
    if (common.empty() || completions.isQuoted)
        return common;
    const bool isWhole = candidates.size() == 1 && !candidates.front().mayGoOn;
    return QuoteWord(common) + (isWhole ? " " : "");
}

void ListCandidates(const std::vector<Candidate>& candidates) {
    std::fputc('\n', stdout);
    for (const Candidate& candidate : candidates)
        std::fprintf(stdout, "%s\n", candidate.word.c_str());
    std::fflush(stdout);
}

class EditedLines final : public LineSource {
public:
    EditedLines(const WordCompleter& completer, std::optional<std::string> historyFile)
        : completer(completer), historyFile(std::move(historyFile)), history(::history_init()) {
        ChooseCharacters();
        editor.reset(::el_init(programName, stdin, stdout, stderr));
        PrepareHistory();
        PrepareEditor();
    }

    [[nodiscard]] std::optional<std::string> Next() override {
        for (;;) {
            int length = 0;
            isDiscarded = false;
            const char* const text = ::el_gets(editor.get(), &length);
            if (isDiscarded)
                continue;
            if (text == nullptr || length <= 0) {
                std::fputc('\n', stdout); // the terminal stands behind the prompt
                return std::nullopt;
            }
            std::string line(text, static_cast<std::size_t>(length));
            while (line.ends_with('\n') || line.ends_with('\r'))
                line.pop_back();
            Remember(line);
            return line;
        }
    }

    [[nodiscard]] std::string GetPlace() const override { return ""; }

private:
    void PrepareHistory() {
        HistEvent event{};
        ::history(history.get(), &event, H_SETSIZE, historySize);
        ::history(history.get(), &event, H_SETUNIQUE, 1);
        if (historyFile)
            ::history(history.get(), &event, H_LOAD, historyFile->c_str());
    }

    void PrepareEditor() {
        EditLine* const it = editor.get();
        ::el_set(it, EL_CLIENTDATA, this);
        ::el_set(it, EL_PROMPT, &GetPrompt);
        ::el_set(it, EL_SIGNAL, 1);
        ::el_set(it, EL_HIST, ::history, history.get());
        ::el_set(it, EL_EDITOR, "emacs");
        ::el_set(it, EL_ADDFN, "complete-word", "Complete the word", &Complete);
        ::el_set(it, EL_ADDFN, "discard-line", "Discard the line", &Discard);
        ::el_set(it, EL_BIND, "^I", "complete-word", nullptr);
        ::el_set(it, EL_BIND, "^R", "em-inc-search-prev", nullptr);
        ::el_set(it, EL_BIND, "^C", "discard-line", nullptr);
        ::el_set(it, EL_ADDFN, "stop-program", "Stop the program until it is continued", &Stop);
        ::el_set(it, EL_BIND, "^Z", "stop-program", nullptr);
        // While a line is edited these keys are keys as all others; else they are signals.
        ::el_set(it, EL_SETTY, "-d", "-isig", nullptr);
        ::el_source(it, nullptr); // what the user wants otherwise
    }

    void Remember(const std::string& line) {
        if (line.find_first_not_of(" \t") == std::string::npos)
            return;
        HistEvent event{};
        ::history(history.get(), &event, H_ENTER, line.c_str());
        if (historyFile) // each time, since the program may be killed
            ::history(history.get(), &event, H_SAVE, historyFile->c_str());
    }

    static char* GetPrompt(EditLine*) {
        static char prompt[] = "tolvexpath> "; // the editor's interface lacks the const
        return prompt;
    }

    static EditedLines& GetSelf(EditLine* editor) {
        void* self = nullptr;
        ::el_get(editor, EL_CLIENTDATA, &self);
        return *static_cast<EditedLines*>(self);
    }

    static unsigned char Discard(EditLine* editor, int) {
        GetSelf(editor).isDiscarded = true;
        std::fputs("^C\n", stdout);
        std::fflush(stdout);
        return CC_NEWLINE;
    }

    static unsigned char Stop(EditLine*, int) {
        std::raise(SIGTSTP); // the editor sees to the terminal before and after
        return CC_REDISPLAY;
    }

    static unsigned char Complete(EditLine* editor, int) {
        try {
            return GetSelf(editor).CompleteWord();
        } catch (const std::exception&) { // which the editor could not let through
            return CC_ERROR;
        }
    }

    unsigned char CompleteWord() {
        const LineInfo* const shown = ::el_line(editor.get());
        const std::string line(shown->buffer, static_cast<std::size_t>(shown->cursor - shown->buffer));
        const WordCompletions found = completer.Complete(line);
        if (found.candidates.empty())
            return CC_REFRESH_BEEP;
        const std::string word = line.substr(found.start);
        const std::string replacement = MakeReplacement(found);
        if (found.candidates.size() > 1 && replacement.size() <= word.size()) {
            ListCandidates(found.candidates);
            return CC_REDISPLAY;
        }
        ::el_deletestr(editor.get(), CountCharacters(word));
        return ::el_insertstr(editor.get(), replacement.c_str()) == 0 ? CC_REFRESH : CC_REFRESH_BEEP;
    }

    const WordCompleter& completer;
    const std::optional<std::string> historyFile;
    std::unique_ptr<History, HistoryCloser> history;
    std::unique_ptr<EditLine, EditorCloser> editor;
    bool isDiscarded = false;
};

} // namespace

std::unique_ptr<LineSource> CreateEditedLines(const WordCompleter& completer,
                                              const std::optional<std::string>& historyFile) {
    return std::make_unique<EditedLines>(completer, historyFile);
}

} // namespace TolvexPath
