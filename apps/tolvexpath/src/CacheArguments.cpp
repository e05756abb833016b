#include "CacheArguments.h"

#include "FolderArguments.h"
#include "Messages.h"

#include "path_utilities/ToolboxCacheFile.h"
#include "search_path/Accessors.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace TolvexPath {

void CacheArguments::DeclareOptions(CLI::App& arguments) {
    CLI::Option* const cache =
        arguments.add_option("--cache", file, "Take folders from a path cache file instead of listing them")
            ->type_name("FILE");
    CLI::Option* const cacheRoot =
        arguments.add_option("--root", root, "The folder that the cache file's names are relative to")
            ->type_name("FOLDER")
            ->needs(cache);
    cache->needs(cacheRoot);
}

void CacheArguments::Load() const {
    if (!file)
        return;
    try {
        PathManagement::LoadToolboxPathCache(PathManagement::GetPathEntryFactory(), MakeLocation(root), *file);
    } catch (const Tolvex::Exception& refusal) {
        PrintMessage(fmt::format("the cache is not used, the folders are read instead: {}", refusal.what()));
    }
}

} // namespace TolvexPath
