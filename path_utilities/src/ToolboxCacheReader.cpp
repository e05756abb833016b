#include "path_utilities/ToolboxCacheReader.h"

#include "StreamCursor.h"
#include "ToolboxCacheRecordDraft.h"

#include <cstring>
#include <string>

namespace PathManagement {

namespace {

constexpr std::string_view rootElement = "<Harrowfen type=\"Path Cache File\" version=\"2.0\" date=";

constexpr bool IsWhiteSpace(char character) noexcept {
    return character == ' ' || (character >= '\t' && character <= '\r');
}

/// How much of it stands at the beginning of a text.
constexpr std::size_t CountWhiteSpace(std::string_view text) noexcept {
    std::size_t length = 0;
    while (length < text.size() && IsWhiteSpace(text[length]))
        ++length;
    return length;
}

constexpr bool IsFileKind(char element) noexcept {
    return element == 'C' || element == 'N' || element == 'U';
}

} // namespace

/// Open folders are known by their index in the record, so that depth costs no stack.
class ToolboxCacheReader::Parser {
public:
    explicit Parser(std::istream& cacheFile) : cursor(cacheFile) { unfinishedName.reserve(ordinaryName); }

    std::shared_ptr<const ToolboxCacheRecord> Next() {
        if (isAtEnd)
            return nullptr;
        if (cursor.GetPosition() == 0)
            ReadRootStart();
        const char element = ReadElementStart();
        if (element == '/') {
            Match("Harrowfen>");
            isAtEnd = true;
            return nullptr;
        }
        if (element != 'D')
            Refuse("\"D\" or \"/\"");
        return ReadTopLevelFolder();
    }

private:
    using Folder = ToolboxCacheRecord::Folder;

    static constexpr std::size_t ordinaryName = 1300;

    void ReadRootStart() {
        SkipWhiteSpace();
        Match(rootElement);
        while (ReadCharacter() != '>') {
        }
    }

    std::shared_ptr<const ToolboxCacheRecord> ReadTopLevelFolder() {
        draft.Begin();
        std::uint32_t folder = BeginFolder(Folder::none);
        while (folder != Folder::none) {
            ReadFilesAtHand(folder);
            const char element = ReadElementStart();
            switch (element) {
            case '/':
                Match("D>");
                folder = draft.GetParent(folder);
                break;
            case 'D':
                folder = BeginFolder(folder);
                break;
            case 'C':
            case 'N':
            case 'U':
                ReadName([&](std::string_view name) { draft.AddFile(name, folder, element); });
                Match("/>");
                break;
            default:
                Refuse("\"D\", \"C\", \"N\", \"U\" or \"/\"");
            }
        }
        return draft.Finish();
    }

    std::uint32_t BeginFolder(std::uint32_t parent) {
        std::uint32_t folder = 0;
        ReadName([&](std::string_view name) { folder = draft.AddFolder(name, parent); });
        Match(">");
        return folder;
    }

    /// Reads files, nearly all there are, that the stream's buffer holds whole and that are spelled as they are
    /// written. Stops before the first thing that is anything else.
    void ReadFilesAtHand(std::uint32_t folder) {
        const std::string_view available = cursor.GetAvailable();
        std::string_view rest = available;
        while (ReadFileAtHand(rest, folder)) {
        }
        cursor.Take(available.size() - rest.size());
    }

    bool ReadFileAtHand(std::string_view& text, std::uint32_t folder) {
        const std::string_view element = text.substr(CountWhiteSpace(text));
        constexpr std::size_t nameBegin = std::string_view("<C name=\"").size();
        if (element.size() < nameBegin || element[0] != '<' || !IsFileKind(element[1]) ||
            std::memcmp(&element[2], " name=\"", nameBegin - 2) != 0)
            return false;
        const std::size_t nameEnd = element.find('"', nameBegin);
        constexpr std::string_view end = "\"/>";
        if (nameEnd == std::string_view::npos || element.size() < nameEnd + end.size() ||
            std::memcmp(&element[nameEnd], end.data(), end.size()) != 0)
            return false;
        draft.AddFile(element.substr(nameBegin, nameEnd - nameBegin), folder, element[1]);
        text = element.substr(nameEnd + end.size());
        return true;
    }

    /// Reads a name attribute and calls `use` with its value.
    template <class Use>
    void ReadName(const Use& use) {
        SkipWhiteSpace();
        Match("name=\"");
        unfinishedName.clear();
        for (;;) {
            const std::string_view available = GetAvailable("the closing quote of a name");
            const std::size_t quote = available.find('"');
            if (quote == std::string_view::npos) {
                unfinishedName.append(available);
                cursor.Take(available.size());
                continue;
            }
            use(unfinishedName.empty() ? available.substr(0, quote)
                                       : unfinishedName.append(available.substr(0, quote)));
            return cursor.Take(quote + 1);
        }
    }

    char ReadElementStart() {
        SkipWhiteSpace();
        Match("<");
        return ReadCharacter();
    }

    void SkipWhiteSpace() {
        for (;;) {
            const std::string_view available = cursor.GetAvailable();
            const std::size_t length = CountWhiteSpace(available);
            cursor.Take(length);
            if (length < available.size() || available.empty())
                return;
        }
    }

    void Match(std::string_view expected) {
        if (cursor.GetAvailable().starts_with(expected))
            return cursor.Take(expected.size());
        MatchInPieces(expected);
    }

    void MatchInPieces(std::string_view expected) {
        for (std::size_t matched = 0; matched < expected.size();) {
            const std::string_view wanted = expected.substr(matched);
            const std::string_view available = GetAvailable(expected);
            const std::size_t length = std::min(wanted.size(), available.size());
            if (std::memcmp(wanted.data(), available.data(), length) != 0)
                Refuse(expected);
            cursor.Take(length);
            matched += length;
        }
    }

    char ReadCharacter() {
        const char character = GetAvailable("more").front();
        cursor.Take(1);
        return character;
    }

    std::string_view GetAvailable(std::string_view expected) {
        const std::string_view available = cursor.GetAvailable();
        if (available.empty())
            RefuseEnd(expected);
        return available;
    }

    [[noreturn]] void RefuseEnd(std::string_view expected) const {
        throw ToolboxCacheWrongFormatException("The path cache file ends after byte " +
                                               std::to_string(cursor.GetPosition()) + ", where " +
                                               std::string(expected) + " was expected.");
    }

    [[noreturn]] void Refuse(std::string_view expected) const {
        throw ToolboxCacheWrongFormatException("The path cache file is malformed near byte " +
                                               std::to_string(cursor.GetPosition()) + ": expected " +
                                               std::string(expected) + ".");
    }

    StreamCursor cursor;
    ToolboxCacheRecordDraft draft;
    bool isAtEnd = false;
    std::string unfinishedName; // the beginning of a name that the stream's buffer does not hold whole
};

ToolboxCacheReader::ToolboxCacheReader(std::istream& cacheFile) : parser(std::make_unique<Parser>(cacheFile)) {}

ToolboxCacheReader::~ToolboxCacheReader() = default;

std::shared_ptr<const ToolboxCacheRecord> ToolboxCacheReader::Next() {
    return parser->Next();
}

void ReadToolboxCache(std::istream& cacheFile,
                      const std::function<void(std::shared_ptr<const ToolboxCacheRecord>)>& deliver) {
    ToolboxCacheReader reader(cacheFile);
    while (auto record = reader.Next())
        deliver(std::move(record));
}

} // namespace PathManagement
