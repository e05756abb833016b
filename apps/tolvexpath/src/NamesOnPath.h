#pragma once

#include "path_interfaces/IPath.h"

#include <functional>
#include <span>
#include <vector>

namespace TolvexPath {

/// The kinds of folders whose files are called from elsewhere.
inline constexpr PathManagement::SearchScope namedKinds{
    PathManagement::PathEntryType::mainFolder, PathManagement::PathEntryType::packageFolder,
    PathManagement::PathEntryType::methodFolder, PathManagement::PathEntryType::uddClassFolder};

/// What counts as a name and when two are the same.
struct NameRules {
    PathManagement::FilenameMatchingPolicy policy = PathManagement::FilenameMatchingPolicy::native;
    std::vector<Tolvex::ustring> extensions; ///< most wanted first
    PathManagement::SearchScope scope = namedKinds;
    bool countsOtherForms = false; ///< files of one stem in one folder, such as a source and its prepared form
};

/// A name to which more than one file answers.
struct NameConflict {
    Tolvex::ustring name; ///< "f", or behind the name of its package or class: "shapes.f"
    PathManagement::FoundItem winner;
    std::vector<PathManagement::FoundItem> hidden; ///< in path order
};

/// Names that are told apart by nothing but their case, so that a disk that ignores case takes them for one.
struct CaseClash {
    Tolvex::ustring name;                         ///< as the first file spells it
    std::vector<PathManagement::FoundItem> files; ///< the first of each spelling, in path order
};

/// Every name of a path once, so that questions about all of them cost one walk and one sort. Members of a package or
/// class that several folders bring belong together, as one name space.
class NamesOnPath {
public:
    NamesOnPath(const PathManagement::IPath& path, NameRules rules);

    /// By the rule of a search for each name; in the order of the winners on the path.
    [[nodiscard]] std::vector<NameConflict> FindConflicts() const;

    /// In the order of the first files on the path.
    [[nodiscard]] std::vector<CaseClash> FindCaseClashes() const;

private:
    struct Name {
        const PathManagement::PathItem* item; // owned by the entry
        std::uint32_t entry;                  // its place in `entries`
        std::uint32_t owner;                  // its place in `owners`
        std::uint32_t rank;                   // in its folder: the most wanted extension first
    };
    using Group = std::span<const Name>;

    void Add(std::shared_ptr<const PathManagement::IPathEntry> entry, std::uint32_t owner);
    void ForEachGroup(const std::function<void(Group)>& visit) const;
    void AddConflicts(Group group, std::vector<NameConflict>& conflicts) const;
    [[nodiscard]] std::vector<Name> SelectAnswers(Group group, Tolvex::ustring_view stem) const;
    [[nodiscard]] PathManagement::FoundItem MakeFile(const Name& name) const;
    [[nodiscard]] Tolvex::ustring MakeQualifiedName(const Name& name, Tolvex::ustring_view stem) const;

    NameRules rules;
    std::vector<std::shared_ptr<const PathManagement::IPathEntry>> entries; // in path order
    std::vector<Tolvex::ustring> owners; // packages and classes; empty for main folders
    std::vector<Name> names;             // those of one group side by side
};

} // namespace TolvexPath
