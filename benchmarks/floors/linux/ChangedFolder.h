#pragma once

#include "floors/FlatNameMap.h"
#include "floors/linux/FolderEvents.h"
#include "floors/linux/FolderWalk.h"

#include <utility>

namespace KxBenchmarks {

/// The least that following a change costs: the kernel says which folder it was, that folder alone is listed, and the
/// stems of its files make an overlay over an index that stays as it is and is not asked here.
class ChangedFolder {
public:
    explicit ChangedFolder(std::vector<std::string> watchedFolders)
        : folders(std::move(watchedFolders)), events(folders) {}

    /// Whether the folder that changed last has a file of this stem.
    [[nodiscard]] bool RefreshAndFind(Tolvex::ustring_view stem) {
        if (const auto changed = events.TakeChanged())
            MakeOverlay(folders[*changed]);
        return overlay.Find(stem).has_value();
    }

private:
    void MakeOverlay(const std::string& folder) {
        overlay = {};
        std::uint32_t number = 0;
        const auto add = [this, &number](std::string_view name) {
            Tolvex::ustring text = Tolvex::FromUtf8(std::string(name.substr(0, name.rfind('.'))));
            Tolvex::FoldCaseTo(text, text.data());
            overlay.Add(text, number++);
        };
        if (!ListFolder(AT_FDCWD, folder.c_str(), add, [](int, const char*) {}))
            throw std::runtime_error("cannot list " + folder);
    }

    const std::vector<std::string> folders;
    FolderEvents events;
    FlatNameMap overlay;
};

} // namespace KxBenchmarks
