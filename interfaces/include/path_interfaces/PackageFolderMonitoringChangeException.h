#pragma once

#include "foundation/messages/Exceptions.h"
#include "foundation/storage/CanonicalAbsoluteIRI.h"

#include <utility>

namespace PathManagement {

/// Somebody wants to start or stop the watch of a folder that belongs to a registered package, whose record alone
/// decides how it is watched.
class KX_EXPORT PackageFolderMonitoringChangeException : public Tolvex::MessageIdentifierException {
public:
    explicit PackageFolderMonitoringChangeException(Tolvex::CanonicalAbsoluteIRI folder)
        : MessageIdentifierException(
              {"TOLVEX:tpath", "packageFolderMonitoringChange", {Tolvex::ustring(folder.getPath())}}),
          folder(std::move(folder)) {}

    [[nodiscard]] const Tolvex::CanonicalAbsoluteIRI& GetFolder() const noexcept { return folder; }

private:
    Tolvex::CanonicalAbsoluteIRI folder;
};

} // namespace PathManagement
