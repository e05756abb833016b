#pragma once

#include "foundation/components/ComponentIdentifier.h"

#include <optional>
#include <utility>

namespace PathManagement {

/// The current folder lies in another component than before; a side without a value stands for none.
class CurrentFolderComponentHasBeenChangedEvent {
public:
    using Component = std::optional<TolvexComponents::ComponentIdentifier>;

    CurrentFolderComponentHasBeenChangedEvent(Component before, Component after)
        : before(std::move(before)), after(std::move(after)) {}

    [[nodiscard]] const Component& GetOld() const noexcept { return before; }
    [[nodiscard]] const Component& GetNew() const noexcept { return after; }

private:
    Component before;
    Component after;
};

} // namespace PathManagement
