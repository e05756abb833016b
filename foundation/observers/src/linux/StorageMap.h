#pragma once

#include "../FolderWatches.h"
#include "MountTable.h"

#include <optional>
#include <string>
#include <vector>

namespace Tolvex {

/// Which kind of storage a path leads to, by what the system and its host say. Touches no remote storage.
class StorageMap {
public:
    explicit StorageMap(const std::vector<AbsoluteIRI>& remoteFolders);

    /// By the text of the path alone; links are taken for names.
    [[nodiscard]] StorageKind GetKind(std::string_view path) const;

    /// With the links on the way followed, until what is left leads to remote storage. Without a value where no storage
    /// is remote, hence no way leads there.
    [[nodiscard]] std::optional<IFolderWatches::Way> Follow(const AbsoluteIRI& folder) const;

    /// Readable with "priority" when something was attached or detached since the last update.
    [[nodiscard]] int GetNumber() const noexcept { return mounts.GetNumber(); }
    /// The places where something was.
    [[nodiscard]] std::vector<std::string> Update();

private:
    std::vector<std::string> remotePaths; // by the host's word
    MountTable mounts;
    bool isAnyRemote;
};

} // namespace Tolvex
