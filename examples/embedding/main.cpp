// A small host around the library: it owns a search path, hears of its changes and looks names up while it changes.
//
//   embedding NAME FOLDER...
//
// Build and run it against an installed library:
//
//   cmake -S examples/embedding -B build/embedding -DCMAKE_PREFIX_PATH=/where/it/was/installed
//   cmake --build build/embedding
//   build/embedding/embedding center examples/toolboxes/geometry examples/toolboxes/statistics
#include "foundation/components/ModularPackageRegistry.h"
#include "foundation/environment/CodeFiles.h"
#include "foundation/environment/WorkingFolder.h"
#include "foundation/messages/Catalogue.h"
#include "path_interfaces/events/PathChangeEvent.h"
#include "path_utilities/PathText.h"
#include "search_path/MainSearchPathManagerFactory.h"

#include <algorithm>
#include <atomic>
#include <iostream>
#include <set>
#include <thread>

using namespace PathManagement;

/// Looks one name up again and again on a thread of its own. A path that was taken does not change any more, so readers
/// take no lock and wait for nobody.
class Reader {
public:
    Reader(const IMainSearchPathManager& manager, const char* name) : manager(manager), name(Tolvex::FromUtf8(name)) {}

    /// Returns after a look-up that began later than this call.
    void LookUpOnceMore() const {
        for (const unsigned enough = lookUps + 2; lookUps < enough;)
            std::this_thread::yield();
    }

    std::set<std::string> Stop() {
        thread.request_stop();
        thread.join();
        return found;
    }

private:
    void Run(const std::stop_token& stop) {
        const SearchTarget target(name, Tolvex::GetCodeFileExtensions());
        for (; !stop.stop_requested(); ++lookUps)
            if (const auto file =
                    manager.GetPath()->FindFirstInScope(SearchScope::All(), target, FilenameMatchingPolicy::native))
                found.insert(Tolvex::ToUtf8(file->GetItem().GetIRI().getPath()));
    }

    const IMainSearchPathManager& manager;
    const ustring name;
    std::set<std::string> found; // the thread's own until it was joined
    std::atomic<unsigned> lookUps = 0;
    std::jthread thread{[this](const std::stop_token& stop) { Run(stop); }}; // last: it uses the others
};

void SetPath(IMainSearchPathManager& manager, const std::vector<Tolvex::CanonicalAbsoluteIRI>& folders) {
    Tolvex::Notification problems;
    manager.SetPathEntries(CanonicalIRIRange(folders), problems);
    problems.ForEach(
        [](const auto& problem) { return std::cerr << Tolvex::GetMessageText(problem.message) << '\n', false; });
}

int main(int count, char** arguments) try {
    if (count < 3)
        return std::cerr << "embedding NAME FOLDER...\n", 2;
    std::vector<Tolvex::CanonicalAbsoluteIRI> folders;
    for (int i = 2; i < count; ++i)
        folders.push_back(CanonicalizeRelativePathAgainstCWD(Tolvex::FromUtf8(arguments[i]),
                                                             Tolvex::GetCurrentWorkingFolder().get()));

    // The host's own: the event manager and the registry of components outlive the manager.
    const auto events = Tolvex::createEventMgr();
    TolvexComponents::ModularPackageRegistry components;
    const auto manager = CreateMainSearchPathManager(events, components);
    const auto listener = events->Subscribe<PathChangeEvent>([](const PathChangeEvent& event) {
        std::cout << "stage " << static_cast<int>(event.GetStage()) << ": " << event.GetOldIRIs()->size()
                  << " folders become " << event.GetNewIRIs()->size() << '\n';
    });

    Reader reader(*manager, arguments[1]);
    SetPath(*manager, folders);
    reader.LookUpOnceMore();
    std::ranges::reverse(folders);
    SetPath(*manager, folders);
    reader.LookUpOnceMore();
    manager->RefreshPath(RefreshType::knownChanges); // sees what any program has done to the folders before

    const std::set<std::string> found = reader.Stop();
    for (const std::string& file : found)
        std::cout << arguments[1] << " was " << file << '\n';
    return found.empty() ? 1 : 0;
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 2;
}
