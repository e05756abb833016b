#include "MemoryTree.h"

#include "PathResolver.h"
#include "PathText.h"
#include "foundation/text/CaseFolding.h"

#include <stdexcept>

namespace Tolvex {
namespace {

[[noreturn]] void Refuse(const char* why, ustring_view path) {
    throw std::invalid_argument(std::string(why) + ": " + ToUtf8(path));
}

ustring_view GetLastName(ustring_view path) {
    return path.substr(path.rfind(u'/') + 1);
}

ustring_view GetFolderPart(ustring_view path) {
    return path.substr(0, path.rfind(u'/'));
}

/// A path without repeated and trailing "/"; every name must be one that a folder can hold.
ustring CheckNewPath(ustring_view path) {
    if (!path.starts_with(u'/'))
        Refuse("not an absolute path", path);
    ustring tidy;
    ForEachName(path, [&](ustring_view name) {
        if (!IsChildName(name))
            Refuse("not a name for a file or folder", path);
        AppendName(tidy, name);
    });
    return tidy;
}

} // namespace

/// A path half followed.
struct MemoryTree::Walk {
    NodeReference at;
    StorageFailure failure = StorageFailure::missing;
    int linksLeft = PathResolver::linkLimit;
};

/// The folder and the name that a path means, and what is there.
struct MemoryTree::Place {
    NodeReference folder; ///< none when there is no such folder
    NodeReference node;
    ustring_view name;
};

MemoryTree::MemoryTree(bool ignoresCase, FileTime now)
    : ignoresCase(ignoresCase), root(std::make_shared<Node>(Node{Kind::folder, {}, lastInode, now, {}})) {}

ustring MemoryTree::MakeKey(ustring_view name) const {
    return ignoresCase ? FoldCase(name) : ustring(name);
}

MemoryTree::NodeReference MemoryTree::FindChild(const Node& folder, ustring_view name) const {
    const auto child = folder.children.find(MakeKey(name));
    return child == folder.children.end() ? nullptr : child->second;
}

bool MemoryTree::Step(Walk& walk, ustring_view name) const {
    if (walk.at->kind != Kind::folder) {
        walk.failure = StorageFailure::notAFolder;
        return false;
    }
    if (name == u".")
        return true;
    if (name == u"..") {
        if (const auto parent = walk.at->parent.lock())
            walk.at = parent;
        return true;
    }
    const auto child = FindChild(*walk.at, name);
    if (!child)
        return false;
    if (child->kind == Kind::link)
        return walk.linksLeft-- > 0 && Follow(walk, child->target);
    walk.at = child;
    return true;
}

bool MemoryTree::Follow(Walk& walk, ustring_view path) const {
    if (path.starts_with(u'/'))
        walk.at = root;
    bool found = true;
    ForEachName(path, [&](ustring_view name) { found = found && Step(walk, name); });
    return found;
}

MemoryTree::Found MemoryTree::Find(ustring_view path, const NodeReference& start) const {
    Walk walk{start ? start : root};
    if (!Follow(walk, path))
        return {nullptr, walk.failure};
    return {walk.at};
}

ustring MemoryTree::Canonicalise(ustring_view path) const {
    return PathResolver([this](ustring_view folder, ustring_view name) -> PathResolver::Step {
               const auto found = Find(folder).node;
               const auto child = found && found->kind == Kind::folder ? FindChild(*found, name) : nullptr;
               if (!child)
                   return {};
               if (child->kind == Kind::link)
                   return {PathResolver::Kind::link, child->target};
               return {PathResolver::Kind::other, child->name};
           })
        .Resolve(path);
}

std::optional<ustring> MemoryTree::GetPath(const Node& node) const {
    if (&node == root.get())
        return ustring(u"/");
    const auto parent = node.parent.lock();
    if (!parent)
        return std::nullopt;
    auto path = GetPath(*parent);
    if (path && path->size() == 1)
        path->clear();
    if (path)
        AppendName(*path, node.name);
    return path;
}

void MemoryTree::List(const NodeReference& folder, FolderListing& listing) const {
    for (const auto& [key, child] : folder->children) {
        const auto node = child->kind == Kind::link ? Find(child->name, folder).node : child;
        if (node)
            listing.Add(child->name,
                        node->kind == Kind::file ? FolderListing::Kind::file : FolderListing::Kind::folder);
    }
}

void MemoryTree::Attach(const NodeReference& folder, const NodeReference& node, FileTime now) {
    folder->children.emplace(MakeKey(node->name), node);
    folder->changed = now;
    node->parent = folder;
    node->changed = now;
}

void MemoryTree::Detach(const NodeReference& node, FileTime now) {
    const auto folder = node->parent.lock();
    folder->children.erase(MakeKey(node->name));
    folder->changed = now;
    node->parent.reset();
    node->changed = now;
}

MemoryTree::NodeReference MemoryTree::Make(const NodeReference& folder, Kind kind, ustring_view name, FileTime now) {
    auto node = std::make_shared<Node>(Node{kind, ustring(name), ++lastInode, now, {}});
    Attach(folder, node, now);
    return node;
}

MemoryTree::NodeReference MemoryTree::MakeFolders(ustring_view path, FileTime now) {
    Walk walk{root};
    ForEachName(path, [&](ustring_view name) {
        const auto folder = walk.at; // a link that leads nowhere leaves the walk somewhere else
        if (Step(walk, name))
            return;
        if (walk.failure == StorageFailure::notAFolder || FindChild(*folder, name))
            Refuse("a file or a link that leads nowhere is in the way", path);
        walk.at = Make(folder, Kind::folder, name, now);
    });
    if (walk.at->kind != Kind::folder)
        Refuse("a file is in the way", path);
    return walk.at;
}

MemoryTree::NodeReference MemoryTree::MakeLeaf(ustring_view path, Kind kind, FileTime now) {
    const auto tidy = CheckNewPath(path);
    if (tidy.empty())
        Refuse("not a name for a file or link", path);
    const auto folder = MakeFolders(GetFolderPart(tidy), now);
    if (FindChild(*folder, GetLastName(tidy)))
        Refuse("there already", path);
    return Make(folder, kind, GetLastName(tidy), now);
}

void MemoryTree::AddFolder(ustring_view path, FileTime now) {
    MakeFolders(CheckNewPath(path), now);
}

void MemoryTree::AddFile(ustring_view path, FileTime now) {
    MakeLeaf(path, Kind::file, now);
}

void MemoryTree::AddLink(ustring_view path, ustring_view target, FileTime now) {
    if (target.empty())
        Refuse("a link without a target", path);
    MakeLeaf(path, Kind::link, now)->target = target;
}

/// `path` is one that CheckNewPath has made. The last name is not followed.
MemoryTree::Place MemoryTree::FindPlace(ustring_view path) const {
    Place place{Find(GetFolderPart(path)).node, nullptr, GetLastName(path)};
    if (place.folder && place.folder->kind != Kind::folder)
        place.folder = nullptr;
    if (place.folder)
        place.node = FindChild(*place.folder, place.name);
    return place;
}

void MemoryTree::Remove(ustring_view path, FileTime now) {
    const auto tidy = CheckNewPath(path);
    const auto place = FindPlace(tidy);
    if (!place.node)
        Refuse("not there", path);
    Detach(place.node, now);
}

void MemoryTree::Rename(ustring_view from, ustring_view to, FileTime now) {
    const auto tidyFrom = CheckNewPath(from);
    const auto tidyTo = CheckNewPath(to);
    const auto source = FindPlace(tidyFrom);
    const auto target = FindPlace(tidyTo);
    if (!source.node)
        Refuse("not there", from);
    if (!target.folder || target.name.empty() || (target.node && target.node != source.node))
        Refuse("not a free place", to);
    for (auto above = target.folder; above; above = above->parent.lock())
        if (above == source.node)
            Refuse("a folder cannot move into itself", to);
    Detach(source.node, now);
    source.node->name = target.name;
    Attach(target.folder, source.node, now);
}

} // namespace Tolvex
