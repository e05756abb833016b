// plain_drop PATHFILE: reads the folders into the plain model and lets go of it in place. Prints, each as a JSON line,
// how long that took and what the bare names weigh.
#include "floors/PlainModel.h"
#include "floors/linux/FolderWalk.h"
#include "foundation/text/CaseFolding.h"
#include "programs/Measurements.h"

#include <fstream>

namespace {

using namespace KxBenchmarks;

struct NamesSeen {
    std::size_t files = 0;
    std::size_t codeUnits = 0;
};

std::shared_ptr<const PlainItem> MakeItem(const std::u16string& folder, const std::u16string& name) {
    const std::size_t dot = name.rfind(u'.');
    auto item = std::make_shared<PlainItem>();
    item->stem = name.substr(0, dot);
    item->extension = dot == std::u16string::npos ? std::u16string() : name.substr(dot);
    item->normalizedStem = Tolvex::FoldCase(item->stem);
    item->location = folder + u'/' + name;
    return item;
}

/// The files of child folders are kept with their main folder: for dropping them it makes no difference.
std::shared_ptr<const PlainEntry> MakeEntry(const std::string& folder, NamesSeen& seen) {
    auto entry = std::make_shared<PlainEntry>();
    entry->location = Tolvex::FromUtf8(folder);
    const bool isWhole = WalkMainFolder(folder.c_str(), [&](std::string_view bytes) {
        const auto name = Tolvex::FromUtf8(bytes);
        ++seen.files;
        seen.codeUnits += name.size();
        entry->items.push_back(MakeItem(entry->location, name));
    });
    return isWhole ? entry : nullptr;
}

} // namespace

int main(int count, char** arguments) {
    std::ifstream folders(count == 2 ? arguments[1] : "");
    PlainPath path;
    NamesSeen seen;
    for (std::string folder; std::getline(folders, folder);) {
        path.push_back(MakeEntry(folder, seen));
        if (!path.back())
            return 1;
    }
    if (seen.files == 0)
        return 1;
    const auto bytesPerFile = static_cast<double>(seen.codeUnits * sizeof(char16_t)) / static_cast<double>(seen.files);
    Report("g1", "plain", MeasureMilliseconds([&path] { PlainPath().swap(path); }));
    Report("f1", "names", bytesPerFile);
    return 0;
}
