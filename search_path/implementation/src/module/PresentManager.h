#pragma once

#include "foundation/events/EventMgr.h"
#include "path_interfaces/IMainSearchPathManager.h"

namespace PathManagement {

/// Knows the search path manager that was made last, for as long as it lives: built-in functions are handed none. For
/// the thread that makes, changes and destroys managers.
class PresentManager {
public:
    /// Null when there is none.
    [[nodiscard]] static const IMainSearchPathManager* Get() noexcept;

    /// Makes `manager` the present one until `events` tells that it will be destroyed.
    static void Set(const IMainSearchPathManager& manager, Tolvex::EventMgr& events);

    /// From now on there is none. Managers made earlier are not gone back to: they have lost their folder monitor.
    static void Forget() noexcept;
};

} // namespace PathManagement
