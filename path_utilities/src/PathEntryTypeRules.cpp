#include "path_utilities/PathEntryTypeRules.h"

#include <array>

namespace PathManagement {

using Tolvex::ustring_view;

namespace {

/// How a special folder is recognised: by a mark in front of any name, or by its whole name.
struct FolderMark {
    ustring_view text;
    bool isWholeName;
    PathEntryType type;

    [[nodiscard]] bool Fits(ustring_view baseName) const noexcept {
        return isWholeName ? baseName == text : baseName.size() > text.size() && baseName.starts_with(text);
    }
};

constexpr std::array folderMarks{
    FolderMark{u"+", false, PathEntryType::packageFolder},
    FolderMark{u"@", false, PathEntryType::methodFolder},
    FolderMark{u"private", true, PathEntryType::privateFolder},
    FolderMark{u"resources", true, PathEntryType::resourcesFolder},
};

const FolderMark* FindMark(ustring_view baseName) noexcept {
    for (const FolderMark& mark : folderMarks)
        if (mark.Fits(baseName))
            return &mark;
    return nullptr;
}

bool IsMethodFolderName(ustring_view baseName) noexcept {
    const FolderMark* mark = FindMark(baseName);
    return mark != nullptr && mark->type == PathEntryType::methodFolder;
}

} // namespace

PathEntryType GetPathEntryTypeFromBaseName(ustring_view parentBaseName, ustring_view baseName) noexcept {
    const FolderMark* mark = FindMark(baseName);
    if (mark == nullptr)
        return PathEntryType::mainFolder;
    if (mark->type == PathEntryType::methodFolder && IsMethodFolderName(parentBaseName))
        return PathEntryType::uddClassFolder;
    return mark->type;
}

PathEntryType GetPathEntryTypeFromLocation(const Tolvex::AbsoluteIRI& location) noexcept {
    const ustring_view path = location.getPath();
    const ustring_view baseName = location.getBaseName();
    const ustring_view above = path.substr(0, path.size() - baseName.size());
    const ustring_view parentPath = above.empty() ? above : above.substr(0, above.size() - 1);
    const std::size_t slash = parentPath.rfind(u'/');
    const ustring_view parentBaseName = slash == ustring_view::npos ? parentPath : parentPath.substr(slash + 1);
    return GetPathEntryTypeFromBaseName(parentBaseName, baseName);
}

ustring_view GetNameWithoutMark(ustring_view baseName) noexcept {
    const FolderMark* mark = FindMark(baseName);
    return mark == nullptr || mark->isWholeName ? baseName : baseName.substr(mark->text.size());
}

} // namespace PathManagement
