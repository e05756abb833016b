// Random changes of a small tree on the machine's own disk, of the working folder and of the path; after each, a
// refresh has to give what a map of names says.

#include "Host.h"

#include <rapidcheck/gtest.h>

#include <map>
#include <set>

namespace PathManagement {
namespace {

const std::vector<std::string> topFolders{"current", "a", "b", "deep/c"};
/// A top folder and what lies in it, in path order.
const std::vector<std::string> childFolders{"", "/+pack", "/@Class", "/@Class/private", "/private"};
const std::vector<std::string> stems{"f", "g", "h"};

/// A host's disk, and what it ought to hold: each folder with the names of its files.
class Trial {
public:
    Trial() {
        MakeFolders("current");
        shown = "current";
    }

    void WriteFile() {
        const std::string folder = SomeFolder();
        MakeFolders(folder);
        const std::string name = SomeName();
        host.Write(folder + "/" + name);
        files[folder].insert(name);
    }

    void RemoveFile() {
        const auto folder = SomeFilledFolder();
        if (folder == files.end())
            return;
        host.Remove(folder->first + "/" + *folder->second.begin());
        folder->second.erase(folder->second.begin());
    }

    /// To another folder maybe, over another file maybe.
    void MoveFile() {
        const auto from = SomeFilledFolder();
        if (from == files.end())
            return;
        const std::string to = SomeFolder();
        MakeFolders(to);
        const std::string oldName = *from->second.begin();
        const std::string newName = SomeName();
        host.Rename(from->first + "/" + oldName, to + "/" + newName);
        from->second.erase(oldName);
        files[to].insert(newName);
    }

    void RemoveFolder() {
        const std::string folder = SomeFolder();
        host.Remove(folder);
        std::erase_if(files, [&](const auto& item) { return IsIn(item.first, folder); });
    }

    /// Two folders of one kind change places, so that each is a folder that was elsewhere.
    void SwapFolders() {
        const std::string child = SomeChild();
        const std::string one = SomeTop() + child;
        const std::string two = SomeTop() + child;
        if (one == two || !files.contains(one) || !files.contains(two))
            return;
        host.Rename(one, "aside");
        host.Rename(two, one);
        host.Rename("aside", two);
        std::map<std::string, std::set<std::string>> swapped;
        for (const auto& [folder, names] : files)
            swapped[IsIn(folder, one)   ? two + folder.substr(one.size())
                    : IsIn(folder, two) ? one + folder.substr(two.size())
                                        : folder] = names;
        files = std::move(swapped);
    }

    void EnterFolder() {
        const std::string folder = SomeTop();
        MakeFolders(folder);
        host.Enter(folder);
        shown = folder;
    }

    void SetSomePath() {
        const auto wanted = *rc::gen::container<std::vector<std::string>>(rc::gen::elementOf(topFolders));
        host.Set(*manager, wanted);
        std::vector<std::string> accepted;
        for (const std::string& folder : wanted)
            if ((files.contains(folder) || IsListed(stored, folder) || folder == shown) && !IsListed(accepted, folder))
                accepted.push_back(folder);
        stored = std::move(accepted);
    }

    void RefreshAndCheck() {
        manager->RefreshPath(RefreshType::knownChanges);
        RC_ASSERT(GetMainFolders() == GetExpectedMainFolders());
        RC_ASSERT(GetFiles() == GetExpectedFiles());
        for (const std::string& stem : stems)
            RC_ASSERT(host.Find(*manager, stem) == GetExpectedAnswer(stem));
    }

private:
    using Names = std::vector<std::string>;

    static bool IsListed(const Names& names, const std::string& name) {
        return std::ranges::find(names, name) != names.end();
    }
    static bool IsIn(const std::string& folder, const std::string& top) {
        return folder == top || folder.starts_with(top + "/");
    }

    static std::string SomeName() { return *rc::gen::elementOf(stems) + ".kx"; }
    static std::string SomeTop() { return *rc::gen::elementOf(topFolders); }
    static std::string SomeChild() { return *rc::gen::elementOf(childFolders); }
    static std::string SomeFolder() {
        const std::string top = SomeTop();
        return top + SomeChild();
    }
    std::map<std::string, std::set<std::string>>::iterator SomeFilledFolder() {
        return std::ranges::find_if(
            files, [start = SomeFolder()](const auto& item) { return item.first >= start && !item.second.empty(); });
    }

    void MakeFolders(const std::string& folder) {
        host.MakeFolder(folder);
        for (std::string top = folder; !top.empty() && top != "deep"; top = fs::path(top).parent_path())
            files[top];
    }

    Names GetMainFolders() const {
        Names names;
        for (const auto& entry : *manager->GetPath()->GetMainEntries())
            names.push_back(host.Relative(entry->GetIRI()));
        return names;
    }
    Names GetExpectedMainFolders() const {
        Names names{shown};
        std::ranges::copy_if(stored, std::back_inserter(names), [this](const auto& name) { return name != shown; });
        return names;
    }

    /// Every file on the path, in path order.
    Names GetFiles() const {
        Names names;
        manager->GetPath()->ForEachEntry(SearchScope::All(), [&](const auto& entry) {
            for (const auto& item : *entry->GetPathItems())
                names.push_back(host.Relative(item->GetIRI()));
            return false;
        });
        return names;
    }
    Names GetExpectedFiles() const {
        Names names;
        for (const std::string& folder : GetExpectedMainFolders())
            for (const std::string& child : childFolders)
                if (const auto found = files.find(folder + child); found != files.end())
                    for (const std::string& name : found->second)
                        names.push_back(found->first + "/" + name);
        return names;
    }
    std::string GetExpectedAnswer(const std::string& stem) const {
        for (const std::string& file : GetExpectedFiles())
            if (file.ends_with("/" + stem + ".kx"))
                return file;
        return "-";
    }

    Host host;
    std::unique_ptr<IMainSearchPathManager> manager = host.CreateManager();
    std::map<std::string, std::set<std::string>> files;
    Names stored;
    std::string shown; // the folder in front
};

RC_GTEST_PROP(FreshAnswersModel, ARefreshGivesWhatTheDiskHolds, ()) {
    using Step = void (Trial::*)();
    const std::vector<Step> steps{&Trial::WriteFile,   &Trial::WriteFile,   &Trial::WriteFile,
                                  &Trial::RemoveFile,  &Trial::MoveFile,    &Trial::RemoveFolder,
                                  &Trial::SwapFolders, &Trial::EnterFolder, &Trial::SetSomePath};
    const auto chosen = *rc::gen::container<std::vector<std::size_t>>(rc::gen::inRange<std::size_t>(0, steps.size()));
    Trial trial;
    for (const std::size_t step : chosen) {
        (trial.*steps[step])();
        if (*rc::gen::arbitrary<bool>())
            trial.RefreshAndCheck();
    }
    trial.RefreshAndCheck();
}

} // namespace
} // namespace PathManagement
