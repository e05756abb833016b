#include "module/PathDump.h"

#include "foundation/components/ComponentFeature.h"
#include "foundation/environment/StorageAccess.h"
#include "foundation/environment/WorkingFolder.h"
#include "path_interfaces/IPath.h"
#include "path_utilities/PathText.h"

#include <array>
#include <iomanip>
#include <ostream>

namespace PathManagement::detail {

namespace {

constexpr std::array<std::string_view, pathEntryTypeCount> typeNames{"main",    "package",   "method",
                                                                     "private", "UDD class", "resources"};
constexpr std::array<std::string_view, 3> sourceNames{"unknown", "disk", "cache file"};
constexpr std::array<std::string_view, 3> levelNames{"not watched", "time check", "notification"};
constexpr std::array<std::string_view, 3> policyNames{"Reload", "TimecheckDir", "None"};
constexpr std::array<std::string_view, 3> warningNames{"always", "once", "never"};

/// The name of an enumeration's value; its number when it is none of those named, since a dump is what faults are found
/// with.
template <std::size_t count, class Value>
std::string GetName(const std::array<std::string_view, count>& names, Value value) {
    const auto place = static_cast<std::size_t>(value);
    return place < count ? std::string(names[place]) : std::to_string(place);
}

std::string GetText(const Tolvex::AbsoluteIRI& location) {
    return Tolvex::ToUtf8(GetStringFromIRI(location));
}

std::string GetText(const TolvexComponents::ComponentIdentifier& component) {
    return Tolvex::ToUtf8(component.GetName() + u'@' + component.GetVersion().toString());
}

/// Of an entry of others, and of one that a newer entry of its folder has replaced, the factory knows nothing; how
/// closely its folder is to be watched, the monitor says.
PathEntryState FindState(const IPathEntry& entry, const IMainSearchPathManager& manager,
                         const IPathEntryFactory& factory) {
    PathEntryState state = factory.GetEntryState(entry);
    if (state.source == PathEntrySource::unknown)
        state.level = manager.GetFolderMonitor().GetMonitoringLevel(entry.GetIRI());
    return state;
}

void DumpEntry(std::ostream& out, const IPathEntry& entry, const PathEntryState& state) {
    const bool isMain = entry.GetPathEntryType() == PathEntryType::mainFolder;
    out << (isMain ? "  " : "    ") << std::left << std::setw(isMain ? 12 : 10)
        << GetName(typeNames, entry.GetPathEntryType()) << std::setw(12) << GetName(sourceNames, state.source)
        << std::setw(14) << GetName(levelNames, state.level) << std::setw(13)
        << (entry.IsOutOfDate() ? "out of date" : "up to date") << std::right << std::setw(7)
        << entry.GetPathItems()->size() << "  " << GetText(entry.GetIRI()) << '\n';
}

void DumpCurrentFolder(std::ostream& out, const IMainSearchPathManager& manager) {
    const auto memento = manager.CreateMemento()->currentFolder;
    out << "current folder: " << (memento ? GetText(memento->entry->GetIRI()) : "none") << '\n';
}

void DumpComponents(std::ostream& out, const IMainSearchPathManager& manager) {
    const auto current = manager.GetCurrentFolderComponent();
    out << "component of the current folder: " << (current ? GetText(*current) : "none") << "\npackages on the path:";
    const auto components = manager.GetPathComponents();
    for (const auto& component : *components)
        out << ' ' << GetText(component);
    out << (components->empty() ? " none\n" : "\n");
}

std::string GetWorkingFolderText() {
    try {
        return GetText(Tolvex::GetCurrentWorkingFolder().get());
    } catch (const Tolvex::StorageError& error) {
        return error.what();
    }
}

} // namespace

void DumpPath(std::ostream& out, const IMainSearchPathManager& manager, const IPathEntryFactory& factory) {
    const auto path = manager.GetPath();
    out << "search path: " << path->GetMainEntries()->size() << " main folders, " << manager.GetPathIRIs()->size()
        << " set by the user\n  kind        source      watched       state          files  folder\n";
    path->ForEachEntry(SearchScope::All(), [&](const auto& entry) {
        DumpEntry(out, *entry, FindState(*entry, manager, factory));
        return false;
    });
    DumpCurrentFolder(out, manager);
    DumpComponents(out, manager);
}

void DumpSurroundings(std::ostream& out, const IPathEntryFactory& factory) {
    const auto storage = TolvexStorageSystem::GetStorageSystemReference();
    const auto& observers = Tolvex::GetFileFolderObserverFactory(storage);
    const auto counters = factory.GetCounters();
    out << "working folder: " << GetWorkingFolderText()
        << "\ninstallation folder: " << GetText(factory.GetInstallationFolder())
        << "\nremote path policy: " << GetName(policyNames, observers.getRemotePathPolicy())
        << "\nchange handle warning: " << GetName(warningNames, observers.getChangeHandleWarning())
        << "\npackages: " << (TolvexComponents::ComponentFeature::IsOn() ? "on" : "off")
        << "\nfolders listed: " << counters.foldersListed << "\nentries built: " << counters.entriesBuilt
        << "\nentries reused: " << counters.entriesReused << "\nentries kept: " << counters.entriesKept << '\n';
}

} // namespace PathManagement::detail
