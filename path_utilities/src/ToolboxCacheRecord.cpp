#include "path_utilities/ToolboxCacheRecord.h"

#include <algorithm>

namespace PathManagement {

void ToolboxCacheRecord::GroupFiles() {
    if (AssignFiles())
        return;
    std::ranges::stable_sort(files, {}, &File::folder);
    static_cast<void>(AssignFiles());
}

bool ToolboxCacheRecord::AssignFiles() noexcept {
    for (Folder& folder : folders)
        folder.fileCount = 0;
    for (std::uint32_t i = 0; i < files.size(); ++i) {
        Folder& folder = folders[files[i].folder];
        if (folder.fileCount == 0)
            folder.firstFile = i;
        else if (folder.firstFile + folder.fileCount != i)
            return false;
        ++folder.fileCount;
    }
    return true;
}

} // namespace PathManagement
