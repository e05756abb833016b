#include "path_utilities/ToolboxCacheReader.h"

#include "StreamCursor.h"

#include <cstring>
#include <string>

namespace PathManagement {

namespace {

constexpr std::string_view rootElement = "<Harrowfen type=\"Path Cache File\" version=\"2.0\" date=";

constexpr bool IsWhiteSpace(char character) noexcept {
    return character == ' ' || (character >= '\t' && character <= '\r');
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
        auto record = std::make_shared<ToolboxCacheRecord>();
        std::uint32_t folder = BeginFolder(*record, Folder::none);
        while (folder != Folder::none) {
            const char element = ReadElementStart();
            switch (element) {
            case '/':
                Match("D>");
                folder = record->folders[folder].parent;
                break;
            case 'D':
                folder = BeginFolder(*record, folder);
                break;
            case 'C':
            case 'N':
            case 'U':
                ReadFile(*record, folder, element);
                break;
            default:
                Refuse("\"D\", \"C\", \"N\", \"U\" or \"/\"");
            }
        }
        record->GroupFiles();
        return record;
    }

    std::uint32_t BeginFolder(ToolboxCacheRecord& record, std::uint32_t parent) {
        Folder folder;
        folder.parent = parent;
        folder.nameBegin = CheckSize(record.names.size());
        ReadName(record.names);
        folder.nameLength = CheckSize(record.names.size() - folder.nameBegin);
        Match(">");
        record.folders.push_back(folder);
        return CheckSize(record.folders.size() - 1);
    }

    void ReadFile(ToolboxCacheRecord& record, std::uint32_t folder, char kind) {
        const std::uint32_t begin = CheckSize(record.names.size());
        ReadName(record.names);
        Match("/>");
        record.files.push_back({begin, CheckSize(record.names.size() - begin), folder, kind});
    }

    /// Reads a name attribute and appends its value.
    void ReadName(ustring& names) {
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
            if (unfinishedName.empty())
                Tolvex::AppendFromUtf8(names, available.substr(0, quote));
            else
                Tolvex::AppendFromUtf8(names, unfinishedName.append(available.substr(0, quote)));
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
            std::size_t length = 0;
            while (length < available.size() && IsWhiteSpace(available[length]))
                ++length;
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

    std::uint32_t CheckSize(std::size_t size) const {
        if (size >= Folder::none)
            throw ToolboxCacheWrongFormatException(
                "The path cache file holds a folder whose names need more than four thousand million characters.");
        return static_cast<std::uint32_t>(size);
    }

    StreamCursor cursor;
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
