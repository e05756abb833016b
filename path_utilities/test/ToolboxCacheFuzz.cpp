// What must hold for any file whatever. A fuzzer calls it with what it invents (see CMakeLists.txt); the test below
// calls it with the corpus that the fuzzer starts from.

#include "path_utilities/ToolboxCacheReader.h"

#include <cstdint>
#include <cstdlib>
#include <sstream>

using namespace PathManagement;

namespace {

/// Gives one character at a time.
class TricklingBuffer final : public std::streambuf {
public:
    explicit TricklingBuffer(std::string_view text) : text(text) {}

protected:
    int_type underflow() override {
        return next == text.size() ? traits_type::eof() : traits_type::to_int_type(text[next]);
    }
    int_type uflow() override {
        return next == text.size() ? traits_type::eof() : traits_type::to_int_type(text[next++]);
    }

private:
    std::string_view text;
    std::size_t next = 0;
};

void Require(bool condition) {
    if (!condition)
        std::abort();
}

/// All that is delivered, as one text, with a mark at the end of a file that is whole.
ustring ReadAll(std::istream& stream) {
    ustring all;
    try {
        ReadToolboxCache(stream, [&](const std::shared_ptr<const ToolboxCacheRecord>& record) {
            const auto folders = record->GetFolders();
            Require(!folders.empty() && folders.front().parent == ToolboxCacheRecord::Folder::none);
            for (std::size_t i = 0; i < folders.size(); ++i) {
                Require(i == 0 || folders[i].parent < i);
                all.append(u"D").append(record->GetName(folders[i]));
                for (const auto& file : record->GetFiles(folders[i])) {
                    Require(record->GetName(file).find(u'"') == ustring_view::npos);
                    all.append(1, static_cast<char16_t>(file.kind)).append(record->GetName(file));
                }
            }
        });
        all += u"whole";
    } catch (const ToolboxCacheWrongFormatException& refusal) {
        Require(*refusal.what() != '\0');
    }
    return all;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    std::istringstream atOnce(text);
    TricklingBuffer trickle(text);
    std::istream bitByBit(&trickle);
    Require(ReadAll(atOnce) == ReadAll(bitByBit));
    return 0;
}
