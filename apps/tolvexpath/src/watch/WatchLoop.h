#pragma once

#include "watch/WakeUp.h"

#include "path_interfaces/IPathEntryFactory.h"

#include <functional>
#include <utility>

namespace TolvexPath {

/// Refreshes a path whenever one of its folders has changed, until the program is to end.
///
/// Changes often come in bursts: it waits until nothing has happened for a while, though not for ever, so that a folder
/// into which a thousand files are copied is read once and not half full.
class WatchLoop {
public:
    struct Timing {
        WakeUp::Duration quiet{50};      ///< so long nothing may happen before a refresh
        WakeUp::Duration interval{1000}; ///< between looks at folders that nothing tells of
    };
    static constexpr int longestBurst = 20; // quiet times

    /// `refresh` is to bring the path up to date.
    WatchLoop(std::function<void()> refresh, const PathManagement::IPathEntryFactory& factory, const WakeUp& wakeUp,
              Timing timing) noexcept
        : refresh(std::move(refresh)), factory(factory), wakeUp(wakeUp), timing(timing) {}

    void Run();

private:
    [[nodiscard]] bool WaitForChange();
    [[nodiscard]] bool WaitForQuiet();
    [[nodiscard]] bool AskForChanges();

    std::function<void()> refresh;
    const PathManagement::IPathEntryFactory& factory;
    const WakeUp& wakeUp;
    Timing timing;
    Tolvex::ChangeToken seen;
    bool hasFoldersToLookAt = false;
};

} // namespace TolvexPath
