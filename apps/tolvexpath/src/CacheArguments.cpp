#include "CacheArguments.h"

#include "FolderArguments.h"
#include "Messages.h"
#include "Session.h"

#include "path_utilities/ToolboxCacheFile.h"
#include "path_utilities/UniformFolderMonitor.h"
#include "search_path/Accessors.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>

namespace TolvexPath {

using PathManagement::PathEntryVector;

void CacheArguments::DeclareOptions(CLI::App& arguments, bool isTrustOffered) {
    CLI::Option* const cache =
        arguments.add_option("--cache", file, "Take folders from a path cache file instead of listing them")
            ->type_name("FILE");
    CLI::Option* const cacheRoot =
        arguments.add_option("--root", root, "The folder that the cache file's names are relative to")
            ->type_name("FOLDER")
            ->needs(cache);
    cache->needs(cacheRoot);
    if (!isTrustOffered)
        return;
    arguments
        .add_flag("--trust-cache", isTrusted, "Do not look whether folders changed since the cache file was written")
        ->needs(cache);
}

bool CacheArguments::Load() const {
    if (!file)
        return false;
    try {
        PathManagement::LoadToolboxPathCache(PathManagement::GetPathEntryFactory(), MakeLocation(root), *file);
        return true;
    } catch (const Tolvex::Exception& refusal) {
        PrintMessage(fmt::format("the cache is not used, the folders are read instead: {}", refusal.what()));
    }
    return false;
}

void CacheArguments::TellIfUseless(const PathEntryVector& entries) const {
    const PathManagement::IPathEntryFactory& factory = PathManagement::GetPathEntryFactory();
    const auto isMissing = [](const auto& entry) { return entry == nullptr; };
    const auto isFromFile = [&factory](const auto& entry) {
        return entry != nullptr && factory.GetEntryState(*entry).source == PathManagement::PathEntrySource::cacheFile;
    };
    if (!std::ranges::all_of(entries, isMissing) && std::ranges::none_of(entries, isFromFile))
        PrintMessage(fmt::format("no folder of the path is in the cache file '{}' below '{}'", *file, root));
}

PathEntryVector CacheArguments::CreateEntries(const std::vector<Tolvex::AbsoluteIRI>& locations) const {
    const bool isLoaded = Load();
    PathEntryVector entries = TolvexPath::CreateEntries(locations);
    if (isLoaded)
        TellIfUseless(entries);
    if (!file || isTrusted)
        return entries;
    std::vector<Tolvex::AbsoluteIRI> changed;
    for (std::size_t i = 0; i < entries.size(); ++i)
        if (entries[i] != nullptr && entries[i]->IsOutOfDate())
            changed.push_back(locations[i]);
    PathEntryVector updated = TolvexPath::CreateEntries(changed);
    for (auto next = updated.begin(); auto& entry : entries)
        if (entry != nullptr && entry->IsOutOfDate())
            entry = std::move(*next++);
    return entries;
}

Tolvex::Notification CacheArguments::SetPath(Session& session,
                                             const std::vector<Tolvex::AbsoluteIRI>& locations) const {
    const bool isLoaded = Load();
    PathEntryVector looked; // alive until the session has them, so that no folder is listed twice
    if (file && !isTrusted) {
        Tolvex::Notification toldAgain;
        looked = PathManagement::GetPathEntryFactory().CreatePathEntries(
            locations, PathManagement::UniformFolderMonitor(), toldAgain);
        if (isLoaded)
            TellIfUseless(looked);
        // Those that are found out of date are not handed out again.
        for (const auto& entry : looked)
            static_cast<void>(entry != nullptr && entry->IsOutOfDate());
    }
    Tolvex::Notification problems = session.SetPath(locations);
    if (isLoaded && isTrusted)
        TellIfUseless(*session.GetManager().GetPath()->GetMainEntries());
    return problems;
}

} // namespace TolvexPath
