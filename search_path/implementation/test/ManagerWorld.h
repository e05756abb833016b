#pragma once

#include "PathWorld.h"

#include "change_tracking/FolderMonitor.h"
#include "current_folder/CurrentFolderPathManager.h"
#include "current_folder/NoCurrentFolderPathManager.h"
#include "foundation/components/ModularPackageRegistry.h"
#include "foundation/environment/WorkingFolder.h"
#include "main_manager/MainSearchPathManager.h"

namespace PathManagement {

/// Makes current-folder managers for a working folder in memory.
class MemoryCurrentFolderFactory final : public ICurrentFolderPathManagerFactory {
public:
    using Make = std::function<std::unique_ptr<ICurrentFolderPathManager>(CurrentFolderPolicy)>;
    explicit MemoryCurrentFolderFactory(Make make) : make(std::move(make)) {}
    [[nodiscard]] std::unique_ptr<ICurrentFolderPathManager> Create(CurrentFolderPolicy policy) const override {
        return make(policy);
    }

private:
    Make make;
};

/// A manager over a folder tree in memory, with a working folder of its own.
class ManagerWorld : public PathWorld {
public:
    explicit ManagerWorld(const std::vector<std::string>& paths, std::string_view workingFolder = "/work")
        : PathWorld(paths), working(At(workingFolder)) {}

    void ChangeFolder(std::string_view folder) {
        working = At(folder);
        bus->Publish(Tolvex::CurrentWorkingFolderChangedEvent(working));
    }

    void Set(std::initializer_list<std::string_view> folders) {
        Set(std::vector<std::string>(folders.begin(), folders.end()));
    }
    void Set(const std::vector<std::string>& folders) {
        std::vector<Tolvex::CanonicalAbsoluteIRI> locations;
        for (const std::string& folder : folders)
            locations.push_back(At(folder));
        manager.SetPathEntries(CanonicalIRIRange(locations), problems);
    }

    /// A file was changed or came: time passes, so that the change shows.
    template <class Change>
    void OnDisk(const Change& change) {
        storage->GetClock().Advance(std::chrono::seconds(1));
        change(*storage);
        storage->GetClock().Advance(std::chrono::seconds(1));
    }

    std::string Find(std::string_view name) const {
        static const std::vector<ustring> extensions{u".kx"};
        const ustring wanted = Tolvex::FromUtf8(name);
        return File(manager.GetPath()->FindFirstInScope(SearchScope::All(), SearchTarget(wanted, extensions),
                                                        FilenameMatchingPolicy::exact));
    }

    std::string Keys() const {
        std::string keys;
        problems.ForEach([&keys](const auto& entry) {
            keys += (keys.empty() ? "" : " ") + entry.message.key;
            return false;
        });
        return keys;
    }

    boost::shared_ptr<Tolvex::EventMgr> bus = Tolvex::createEventMgr();
    Tolvex::CanonicalAbsoluteIRI working;
    TolvexComponents::ModularPackageRegistry components;
    std::unique_ptr<TolvexPackages::IPackageRegistrar> registrar = TolvexPackages::CreatePackageRegistrar();
    FolderMonitor folderMonitor{At("/installation"), PathOf(PathEntryVector()), *registrar};
    Tolvex::Notification problems;
    MainSearchPathManager manager{bus,
                                  components,
                                  factory,
                                  pathFactory,
                                  std::make_unique<MemoryCurrentFolderFactory>(
                                      [this](CurrentFolderPolicy policy) -> std::unique_ptr<ICurrentFolderPathManager> {
                                          if (policy != CurrentFolderPolicy::trackWorkingFolder)
                                              return std::make_unique<NoCurrentFolderPathManager>(pathFactory);
                                          return std::make_unique<CurrentFolderPathManager>(
                                              bus, components, factory, pathFactory, folderMonitor, working);
                                      }),
                                  CurrentFolderPolicy::trackWorkingFolder,
                                  folderMonitor,
                                  MainSearchPathManager::EnableModularPackages::no};
};

/// "stage +added -removed ~reordered (current: ...) !refreshed" of each event, in order.
class EventLog {
public:
    explicit EventLog(ManagerWorld& world)
        : connection(world.bus->Subscribe<PathChangeEvent>([this](const PathChangeEvent& event) {
              texts.push_back(Draw(event));
              if (onEvent)
                  onEvent(event);
          })) {}

    std::vector<std::string> Take() { return std::exchange(texts, {}); }

    /// Called behind the writing of each event.
    std::function<void(const PathChangeEvent&)> onEvent;

private:
    static std::string Draw(const PathChangeEvent& event) {
        std::string text = std::to_string(static_cast<int>(event.GetStage()));
        const auto add = [&text](const char* mark, const PathChangeEvent::Entries& entries) {
            for (const auto& entry : *entries)
                text += mark + Where(entry);
        };
        add(" +", event.GetAdded());
        add(" -", event.GetRemoved());
        add(" ~", event.GetReordered());
        add(" c+", event.GetCurrentFolderAdded());
        add(" c-", event.GetCurrentFolderRemoved());
        add(" !", event.GetRefreshedAfter());
        return text + (event.HasCurrentFolderChanged() ? " cd" : "") + (event.IsRefresh() ? " refresh" : "");
    }

    std::vector<std::string> texts;
    Tolvex::ScopedConnection connection;
};

} // namespace PathManagement
