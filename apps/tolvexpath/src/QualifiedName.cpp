#include "QualifiedName.h"

#include "path_utilities/PathEntryTypeRules.h"

#include <fmt/format.h>

#include <algorithm>

namespace TolvexPath {

using PathManagement::FoundItem;
using PathManagement::IPathEntry;
using PathManagement::PathEntryType;
using PathManagement::SearchTarget;
using Tolvex::ustring;
using Tolvex::ustring_view;

namespace {

constexpr PathManagement::SearchScope kindsWithOwner{PathEntryType::packageFolder, PathEntryType::methodFolder,
                                                     PathEntryType::uddClassFolder};

/// "shapes.Polygon" is the class's own file, which lies in the class folder of that very name.
bool IsOwner(const IPathEntry& entry, ustring_view dotted, ustring_view owner) {
    const ustring descriptor = entry.GetDescriptor();
    return descriptor == owner || (entry.GetPathEntryType() == PathEntryType::methodFolder && descriptor == dotted);
}

} // namespace

Tolvex::AbsoluteIRI GetNearestMainFolder(Tolvex::AbsoluteIRI folder) {
    while (folder.hasParent() && PathManagement::GetPathEntryTypeFromLocation(folder) != PathEntryType::mainFolder)
        folder = folder.getParent();
    return folder;
}

ustring GetSpecialFolderNames(const Tolvex::AbsoluteIRI& folder) {
    return folder.makePathRelativeTo(GetNearestMainFolder(folder)).value_or(ustring());
}

std::optional<QualifiedFile> FindQualified(const PathManagement::IPath& path, const Question& question) {
    ustring dotted = question.name;
    std::ranges::replace(dotted, u'/', u'.');
    const std::size_t dot = dotted.rfind(u'.');
    if (dot == ustring::npos || dot == 0)
        return std::nullopt;
    const ustring_view owner = ustring_view(dotted).substr(0, dot);
    const ustring stem = dotted.substr(dot + 1);
    const SearchTarget target(stem, *question.extensions);
    std::optional<QualifiedFile> found;
    path.ForEachEntry(kindsWithOwner, [&](const std::shared_ptr<const IPathEntry>& entry) {
        if (!IsOwner(*entry, dotted, owner))
            return false;
        if (const auto item = entry->FindFirst(target, *question.policy))
            found = QualifiedFile{FoundItem(entry, item), GetSpecialFolderNames(entry->GetIRI()) + u'/' + stem};
        return found.has_value();
    });
    return found;
}

std::string DescribeQualified(const Question& question, const QualifiedFile& qualified) {
    return fmt::format("'{}' is {}", Tolvex::ToUtf8(question.name), Tolvex::ToUtf8(qualified.name));
}

} // namespace TolvexPath
