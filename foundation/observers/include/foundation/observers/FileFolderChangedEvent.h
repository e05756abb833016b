#pragma once

#include "foundation/storage/AbsoluteIRI.h"

#include <cstdint>
#include <optional>
#include <utility>

namespace Tolvex {

/// Whether a report of a change reaches the frozen observers, too: those of level `none`, which look for nothing.
enum class FrozenInclusion : std::uint32_t { included = 0, excluded = 1 };

/// Somebody says that a folder has changed, whatever its observers see. Published on a local event manager without a
/// context; once delivered, every observer of the folder has changed.
class FileFolderChangedEvent {
public:
    /// `folder` is the text of the folder's IRI; a text that is none names no folder.
    FileFolderChangedEvent(ustring folder, FrozenInclusion frozen) : folder(std::move(folder)), frozen(frozen) {}
    explicit FileFolderChangedEvent(const AbsoluteIRI& folder, FrozenInclusion frozen = FrozenInclusion::included)
        : FileFolderChangedEvent(folder.toString(), frozen) {}

    [[nodiscard]] const ustring& GetFolderText() const noexcept { return folder; }
    [[nodiscard]] std::optional<AbsoluteIRI> GetFolder() const { return AbsoluteIRI::fromString(folder); }
    [[nodiscard]] FrozenInclusion GetFrozenInclusion() const noexcept { return frozen; }

private:
    ustring folder;
    FrozenInclusion frozen;
};

} // namespace Tolvex
