#pragma once

#include "foundation/text/CaseFolding.h"
#include "path_interfaces/IPath.h"

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace PathManagement {

/// What a path has to answer, worked out by brute force: lists, sorting and comparing every name, no index. Built from
/// a plain list of files, not from entries.
struct ModelEntry {
    ustring path;
    PathEntryType type{};
    std::size_t mainPlace = 0;
    std::ptrdiff_t parent = -1;                     // place in the model path
    std::vector<std::pair<ustring, ustring>> files; // stem, extension; sorted
};

using ModelPath = std::vector<ModelEntry>;

/// A tree as the model sees it: folders by path with their file names, all in UTF-16.
using ModelTree = std::map<ustring, std::vector<ustring>>;

inline std::vector<ustring> SplitNames(ustring_view path) {
    std::vector<ustring> names;
    for (std::size_t begin = 0; begin <= path.size();) {
        const std::size_t end = std::min(path.find(u'/', begin), path.size());
        if (end > begin)
            names.emplace_back(path.substr(begin, end - begin));
        begin = end + 1;
    }
    return names;
}

inline ModelTree MakeTree(const std::vector<std::string>& files) {
    ModelTree tree;
    for (const std::string& file : files) {
        const ustring path = Tolvex::FromUtf8(file);
        const std::size_t slash = path.rfind(u'/');
        tree[path.substr(0, slash)].push_back(path.substr(slash + 1));
        for (std::size_t end = path.rfind(u'/', slash - 1); slash > 0 && end != ustring::npos && end > 0;
             end = path.rfind(u'/', end - 1))
            tree[path.substr(0, end)];
    }
    return tree;
}

inline PathEntryType ModelType(const std::vector<ustring>& names) {
    const ustring last = names.empty() ? ustring() : names.back();
    const ustring above = names.size() < 2 ? ustring() : names[names.size() - 2];
    if (last.size() > 1 && last[0] == u'+')
        return PathEntryType::packageFolder;
    if (last.size() > 1 && last[0] == u'@')
        return above.size() > 1 && above[0] == u'@' ? PathEntryType::uddClassFolder : PathEntryType::methodFolder;
    if (last == u"private")
        return PathEntryType::privateFolder;
    return last == u"resources" ? PathEntryType::resourcesFolder : PathEntryType::mainFolder;
}

inline std::pair<ustring, ustring> ModelSplit(const ustring& name) {
    for (std::size_t i = name.size(); i-- > 1;)
        if (name[i] == u'.')
            return {name.substr(0, i), name.substr(i)};
    return {name, u""};
}

/// Appends the entry of a folder and its descendants, in walk order.
inline void AppendEntries(const ModelTree& tree, const ustring& folder, std::size_t mainPlace, std::ptrdiff_t parent,
                          ModelPath& path) {
    static const std::map<int, std::vector<int>> children{
        {0, {1, 2, 4, 3, 5}}, {1, {1, 2, 4, 3, 5}}, {2, {4, 3, 5}}, {3, {}}, {4, {3}}, {5, {}}};
    ModelEntry entry{folder, ModelType(SplitNames(folder)), mainPlace, parent, {}};
    if (const auto found = tree.find(folder); found != tree.end())
        for (const ustring& name : found->second)
            entry.files.push_back(ModelSplit(name));
    std::sort(entry.files.begin(), entry.files.end(), [](const auto& a, const auto& b) {
        return std::tuple(Tolvex::FoldCase(a.first), a.first, a.second) <
               std::tuple(Tolvex::FoldCase(b.first), b.first, b.second);
    });
    const auto own = static_cast<std::ptrdiff_t>(path.size());
    const int type = static_cast<int>(entry.type);
    path.push_back(std::move(entry));
    for (const int kind : std::vector{1, 2, 4, 3, 5}) {
        const auto& valid = children.at(type);
        if (std::find(valid.begin(), valid.end(), kind) == valid.end())
            continue;
        for (const auto& [other, files] : tree) {
            auto names = SplitNames(other);
            if (names.empty() || static_cast<int>(ModelType(names)) != kind || other != folder + u"/" + names.back())
                continue;
            AppendEntries(tree, other, mainPlace, own, path);
        }
    }
}

struct ModelQuestion {
    ustring name;
    std::vector<ustring> extensions;
    FilenameMatchingPolicy policy{};
    std::vector<int> scope;
};

inline bool ModelEqual(const ustring& a, const ustring& b, FilenameMatchingPolicy policy, bool diskIgnoresCase) {
    const bool ignore =
        policy == FilenameMatchingPolicy::ignoreCase || (policy == FilenameMatchingPolicy::native && diskIgnoresCase);
    return ignore ? Tolvex::FoldCase(a) == Tolvex::FoldCase(b) : a == b;
}

inline bool ModelEndsWith(const ustring& path, const std::vector<ustring>& names, bool diskIgnoresCase) {
    const std::vector<ustring> own = SplitNames(path);
    if (names.empty() || names.size() > own.size())
        return false;
    return std::equal(names.rbegin(), names.rend(), own.rbegin(), [&](const ustring& a, const ustring& b) {
        return ModelEqual(a, b, FilenameMatchingPolicy::native, diskIgnoresCase);
    });
}

/// Every file that answers, in path order, as path texts.
inline std::vector<std::string> ModelFind(const ModelPath& path, const ModelQuestion& question, bool diskIgnoresCase) {
    const std::size_t slash = question.name.rfind(u'/');
    const bool isPartial = slash != ustring::npos && question.name[0] != u'/';
    const ustring stem = isPartial ? question.name.substr(slash + 1) : question.name;
    const auto folders = isPartial ? SplitNames(question.name.substr(0, slash)) : std::vector<ustring>();
    std::vector<std::string> found;
    for (const ModelEntry& entry : path) {
        if (std::find(question.scope.begin(), question.scope.end(), static_cast<int>(entry.type)) ==
                question.scope.end() ||
            (isPartial && !ModelEndsWith(entry.path, folders, diskIgnoresCase)))
            continue;
        for (const ustring& extension : question.extensions)
            for (const auto& file : entry.files)
                if (ModelEqual(file.first, stem, question.policy, diskIgnoresCase) &&
                    ModelEqual(file.second, extension, question.policy, diskIgnoresCase))
                    found.push_back(Tolvex::ToUtf8(entry.path + u"/" + file.first + file.second));
    }
    return found;
}

} // namespace PathManagement
