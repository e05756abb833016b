#include "ManagerWorld.h"
#include "PathModel.h"

#include "foundation/components/ModularPackageRegistryHasBeenChanged.h"
#include "path_interfaces/PathAlterationExceptions.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <set>

namespace PathManagement {
namespace {

const std::vector<std::string> mainFolders{"/m0", "/m1", "/m2", "/m3", "/deep/m4"};
const std::vector<std::string> requestable{"/m0", "/m1", "/m2", "/m3", "/deep/m4", "/m0/private", "/m1/+p", "/never"};
const std::vector<std::string> filledFolders{"/m0",         "/m1",    "/m1/+p", "/m1/+p/@c", "/m2", "/m2/@c/private",
                                             "/m0/private", "/m3/@c", "/m3",    "/deep/m4"};
const std::vector<std::string> fileNames{"f.kx", "g.kx", "h.kx"};

struct HandlerError {};

/// A manager, what is to be expected of it, and handlers that get in its way.
class Trial {
public:
    Trial() : world({"/m0/f.kx", "/m1/+p/g.kx", "/m2/h.kx", "/m3/f.kx", "/deep/m4/g.kx", "/m0/private/h.kx"}, "/m0") {
        log.onEvent = [this](const PathChangeEvent& event) { OnEvent(event); };
        world.Set({"/m1"});
        expectedStored = {"/m1"};
    }

    void SetSomePath() {
        const auto request = *rc::gen::container<std::vector<std::string>>(rc::gen::elementOf(requestable));
        std::vector<std::string> accepted;
        for (const std::string& folder : request)
            if (IsAcceptable(folder) && std::ranges::find(accepted, folder) == accepted.end())
                accepted.push_back(folder);
        const bool isRefused = isRestricted && std::set(accepted.begin(), accepted.end()) !=
                                                   std::set(expectedStored.begin(), expectedStored.end());
        RC_ASSERT(Changes([&] { world.Set(request); }, isRefused) == !isRefused || hasThrown);
        if (isSetInstalled)
            expectedStored = accepted;
    }

    void ChangeFolder() {
        const std::string folder = *rc::gen::elementOf(filledFolders);
        if (!IsThere(folder))
            return;
        current = folder;
        Changes([&] { world.ChangeFolder(folder); });
    }

    void ChangeDisk() {
        const std::string folder = *rc::gen::elementOf(filledFolders);
        const std::string file = folder + "/" + *rc::gen::elementOf(fileNames);
        world.OnDisk([&](Tolvex::MemoryStorage& storage) {
            if (files.insert(file).second)
                storage.Add(file);
            else
                storage.Remove(file), files.erase(file);
        });
        NoteFolders();
    }

    void RemoveFolder() {
        const std::string folder = *rc::gen::elementOf(mainFolders);
        if (!IsThere(folder))
            return;
        world.OnDisk([&](Tolvex::MemoryStorage& storage) { storage.Remove(folder); });
        const auto isBelow = [&folder](const std::string& path) {
            return path.starts_with(folder + "/") || path == folder;
        };
        std::erase_if(files, isBelow);
        std::erase_if(folders, isBelow);
    }

    void Refresh() {
        const auto type = *rc::gen::elementOf(
            std::vector{RefreshType::knownChanges, RefreshType::markCurrentFolder, RefreshType::markEverything});
        const bool isMade = Changes([&] { world.manager.RefreshPath(type); });
        if (isMade)
            CheckAnswers();
    }

    void ToggleRestriction() {
        isRestricted = !isRestricted;
        token = isRestricted ? world.manager.PushMutabilityPolicy(PathManagerMutabilityPolicy::noAddingOrRemoving)
                             : nullptr;
    }

    void AnnounceRegistryChange() {
        Changes([&] { world.bus->Publish(TolvexComponents::ModularPackageRegistryHasBeenChanged()); });
    }

    void ArmThrowingHandler() { throwingStage = *rc::gen::inRange(0, 3); }
    void ArmReentry() { reenters = true; }
    void ArmRefreshInside() { refreshesInside = true; }

    void Check() {
        RC_ASSERT(world.manager.GetPathIRIs()->size() == expectedStored.size());
        RC_ASSERT(PathManagement::Where(*world.manager.GetPath()->GetMainEntries()) == Join(GetExpectedPath()));
        RC_ASSERT(PathManagement::Where(*world.manager.CreateMemento()->storedPath->GetMainEntries()) ==
                  Join(expectedStored));
        RC_ASSERT(!sawWrongStage);
    }

private:
    /// Runs a change; true unless it was refused or a handler threw.
    template <class Change>
    bool Changes(const Change& change, bool isRefused = false) {
        hasThrown = false;
        isSetInstalled = false;
        expectedStage = 0;
        try {
            change();
        } catch (const PathAlterationNotSupportedException&) {
            RC_ASSERT(isRefused);
            return false;
        } catch (const HandlerError&) {
            return false;
        }
        return true;
    }

    void OnEvent(const PathChangeEvent& event) {
        const int stage = static_cast<int>(event.GetStage());
        sawWrongStage = sawWrongStage || stage != expectedStage;
        expectedStage = (stage + 1) % 3;
        if (event.GetStage() == PathChangeEvent::Stage::afterChange) {
            isSetInstalled = isSetInstalled || !event.IsRefresh();
            shown = current;
        }
        if (std::exchange(reenters, false))
            try {
                world.Set({"/m3"});
                sawWrongStage = true;
            } catch (const RecursivePathChangeException&) {
            } catch (const PathAlterationNotSupportedException&) {
            }
        if (std::exchange(refreshesInside, false))
            world.manager.RefreshPath(RefreshType::knownChanges);
        if (throwingStage != stage)
            return;
        throwingStage = -1;
        hasThrown = true;
        expectedStage = 0;
        throw HandlerError();
    }

    void CheckAnswers() const {
        ModelPath model;
        const ModelTree tree = MakeTree({files.begin(), files.end()});
        std::size_t place = 0;
        for (const std::string& folder : GetExpectedPath()) {
            const ustring path = Tolvex::FromUtf8(folder);
            AppendEntries(tree, path, place++, -1, model);
            if (model.back().path == path && model.back().type == PathEntryType::privateFolder)
                model.back().type = PathEntryType::mainFolder;
        }
        for (const std::string& name : fileNames) {
            const ustring stem = Tolvex::FromUtf8(name.substr(0, name.find('.')));
            const auto expected =
                ModelFind(model, {stem, {u".kx"}, FilenameMatchingPolicy::exact, {0, 1, 2, 3, 4, 5}}, false);
            RC_ASSERT(world.Find(name.substr(0, name.find('.'))) == (expected.empty() ? "-" : expected.front()));
        }
    }

    std::vector<std::string> GetExpectedPath() const {
        std::vector<std::string> path;
        const auto type = ModelType(SplitNames(Tolvex::FromUtf8(shown)));
        if (type == PathEntryType::mainFolder || type == PathEntryType::privateFolder)
            path.push_back(shown);
        std::ranges::copy_if(expectedStored, std::back_inserter(path),
                             [&](const std::string& folder) { return folder != shown; });
        return path;
    }

    bool IsAcceptable(const std::string& folder) const {
        if (std::ranges::find(mainFolders, folder) == mainFolders.end())
            return false;
        return IsThere(folder) || folder == shown || std::ranges::find(expectedStored, folder) != expectedStored.end();
    }

    bool IsThere(const std::string& folder) const { return folders.contains(folder); }

    void NoteFolders() {
        for (const std::string& file : files)
            for (std::size_t end = file.rfind('/'); end != std::string::npos && end > 0; end = file.rfind('/', end - 1))
                folders.insert(file.substr(0, end));
    }

    static std::string Join(const std::vector<std::string>& texts) {
        std::string joined;
        for (const std::string& text : texts)
            joined += (joined.empty() ? "" : " ") + text;
        return joined;
    }

    ManagerWorld world;
    EventLog log{world};
    std::set<std::string> files{"/m0/f.kx", "/m1/+p/g.kx", "/m2/h.kx", "/m3/f.kx", "/deep/m4/g.kx", "/m0/private/h.kx"};
    std::set<std::string> folders{"/m0", "/m1", "/m1/+p", "/m2", "/m3", "/deep", "/deep/m4", "/m0/private"};
    std::vector<std::string> expectedStored;
    std::string current = "/m0"; // the working folder
    std::string shown = "/m0";   // what stands in front of the path
    std::shared_ptr<void> token;
    bool isRestricted = false;
    int throwingStage = -1;      // where the next handler throws
    bool hasThrown = false;      // one has, during the last change
    bool isSetInstalled = false; // what was set has become the path during the last change
    int expectedStage = 0;
    bool reenters = false;
    bool refreshesInside = false;
    bool sawWrongStage = false;
};

RC_GTEST_PROP(MainSearchPathManagerModel, AnswersAsASimpleModelAfterEveryOperation, ()) {
    Trial trial;
    using Step = void (Trial::*)();
    const std::vector<Step> steps{&Trial::SetSomePath,       &Trial::SetSomePath,
                                  &Trial::ChangeFolder,      &Trial::ChangeDisk,
                                  &Trial::ChangeDisk,        &Trial::RemoveFolder,
                                  &Trial::Refresh,           &Trial::Refresh,
                                  &Trial::ToggleRestriction, &Trial::AnnounceRegistryChange,
                                  &Trial::ArmReentry,        &Trial::ArmThrowingHandler,
                                  &Trial::ArmRefreshInside};
    const auto chosen = *rc::gen::container<std::vector<std::size_t>>(rc::gen::inRange<std::size_t>(0, steps.size()));
    for (const std::size_t step : chosen) {
        (trial.*steps[step])();
        trial.Check();
    }
}

} // namespace
} // namespace PathManagement
