// A host that does not link the library: it loads it, finds the entry points by name and calls the rest through tables
// of virtual operations.

#include "../Host.h"

#include "search_path/Module.h"

#include <dlfcn.h>
#include <oneapi/tbb/global_control.h>

namespace PathManagement {
namespace {

class LoadedLibrary {
public:
    LoadedLibrary() : handle(::dlopen(KX_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {
        if (handle == nullptr)
            throw std::runtime_error(::dlerror());
    }
    LoadedLibrary(const LoadedLibrary&) = delete;
    LoadedLibrary& operator=(const LoadedLibrary&) = delete;
    ~LoadedLibrary() { ::dlclose(handle); }

    /// REQUIRES: `Operation` is the type of the operation that bears the name.
    template <class Operation>
    [[nodiscard]] Operation Find(const char* mangledName) const {
        void* const address = ::dlsym(handle, mangledName);
        if (address == nullptr)
            throw std::runtime_error(mangledName);
        return reinterpret_cast<Operation>(address);
    }

    [[nodiscard]] static bool IsInMemory() {
        void* const present = ::dlopen(KX_LIBRARY, RTLD_NOW | RTLD_NOLOAD);
        if (present == nullptr)
            return false;
        ::dlclose(present);
        return true;
    }

private:
    void* handle;
};

/// The library's operations, found in a load of it. Their names are what programs built before look for.
struct Operations {
    explicit Operations(const LoadedLibrary& library)
        : initialize(library.Find<decltype(&initializeFcn)>("_ZN14PathManagement13initializeFcnEv")),
          terminate(library.Find<decltype(&terminateFcn)>("_ZN14PathManagement12terminateFcnEv")),
          getPathEntryFactory(
              library.Find<decltype(&GetPathEntryFactory)>("_ZN14PathManagement19GetPathEntryFactoryEv")),
          getCurrentPathFactory(
              library.Find<decltype(&GetCurrentPathFactory)>("_ZN14PathManagement21GetCurrentPathFactoryEv")),
          getFolderMonitor(library.Find<decltype(&GetFolderMonitor)>("_ZN14PathManagement16GetFolderMonitorEv")),
          setFolderMonitor(library.Find<decltype(&SetFolderMonitor)>(
              "_ZN14PathManagement16SetFolderMonitorEOSt10unique_ptrINS_14IFolderMonitorESt14default_deleteIS1_EE")),
          createManager(library.Find<decltype(&CreateMainSearchPathManager)>(
              "_ZN14PathManagement27CreateMainSearchPathManagerERKN5boost10shared_ptrIN6Tolvex8EventMgrEEE"
              "RN16TolvexComponents23IModularPackageRegistryE")) {}

    decltype(&initializeFcn) initialize;
    decltype(&terminateFcn) terminate;
    decltype(&GetPathEntryFactory) getPathEntryFactory;
    decltype(&GetCurrentPathFactory) getCurrentPathFactory;
    decltype(&GetFolderMonitor) getFolderMonitor;
    decltype(&SetFolderMonitor) setFolderMonitor;
    decltype(&CreateMainSearchPathManager) createManager;
};

struct Holdings {
    std::ptrdiff_t descriptors;
    std::ptrdiff_t threads;
    bool operator==(const Holdings&) const = default;
};

void PrintTo(const Holdings& holdings, std::ostream* out) {
    *out << holdings.descriptors << " descriptors, " << holdings.threads << " threads";
}

Holdings CountHoldings() {
    const auto count = [](const char* folder) {
        return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
    };
    return {count("/proc/self/fd"), count("/proc/self/task")};
}

class LoadCyclesTest : public testing::Test {
protected:
    /// One life of the library in the host.
    void LoadUseAndClose() {
        const LoadedLibrary library;
        const Operations operations(library);
        operations.initialize();
        if (entryFactory == nullptr)
            entryFactory = &operations.getPathEntryFactory();
        EXPECT_EQ(&operations.getPathEntryFactory(), entryFactory);
        UseManager(*operations.createManager(host.bus, host.components));
        const auto path = MakePath(operations, {"current", "elsewhere"});
        EXPECT_EQ(path->GetMainEntries()->size(), 2U);
        operations.setFolderMonitor(nullptr);
        operations.terminate();
    }

    std::shared_ptr<const IPath> MakePath(const Operations& operations, const std::vector<std::string>& folders) {
        PathEntryVector entries;
        for (const std::string& folder : folders)
            entries.push_back(
                operations.getPathEntryFactory().CreatePathEntry(host.Locate(folder), operations.getFolderMonitor()));
        return operations.getCurrentPathFactory().CreatePath(
            std::make_shared<const PathEntryVector>(std::move(entries)), nullptr);
    }

    void UseManager(IMainSearchPathManager& manager) {
        host.Write("main/f.kx");
        EXPECT_EQ(host.Set(manager, {"main"}), "");
        EXPECT_EQ(host.Find(manager, "f"), "main/f.kx");
        host.Rename("main/f.kx", "main/g.kx");
        manager.RefreshPath(RefreshType::knownChanges);
        EXPECT_EQ(host.Find(manager, "g"), "main/g.kx");
        host.Enter("main");
        host.Enter("current");
        host.Remove("main");
        manager.RefreshPath(RefreshType::knownChanges);
        EXPECT_EQ(host.Find(manager, "g"), "-");
    }

    // Helpers of parallel loops come when there is much to do: they would be counted in one round and not in another.
    oneapi::tbb::global_control noHelpers{oneapi::tbb::global_control::max_allowed_parallelism, 1};
    Host host;
    const IPathEntryFactory* entryFactory = nullptr;
};

TEST_F(LoadCyclesTest, TheLibraryMayBeLoadedUsedAndClosedAgainAndAgain) {
    ASSERT_FALSE(LoadedLibrary::IsInMemory()) << "the test is linked to what it is meant to load";
    const Holdings before = CountHoldings();
    {
        const LoadedLibrary library;
        EXPECT_EQ(CountHoldings(), before) << "nothing starts before the first use";
    }
    Holdings early{};
    for (int round = 1; round <= 20; ++round) {
        LoadUseAndClose();
        EXPECT_TRUE(LoadedLibrary::IsInMemory()) << "its threads may still run";
        if (round == 2)
            early = CountHoldings();
    }
    EXPECT_EQ(CountHoldings(), early);
}

} // namespace
} // namespace PathManagement
