#include "watch/WatchLoop.h"

namespace TolvexPath {

void WatchLoop::Run() {
    while (WaitForChange() && WaitForQuiet()) {
        refresh();
        // Folders on a far disk may count as changed whenever they are looked at.
        if (hasFoldersToLookAt && wakeUp.WaitForNews(timing.interval) == WakeUp::Reason::end)
            return;
    }
}

/// Asks before it waits: a refresh may have taken up news of a folder that it had looked at already.
bool WatchLoop::WaitForChange() {
    while (!AskForChanges()) {
        const bool isTold = wakeUp.HearsNews() && !hasFoldersToLookAt;
        if (wakeUp.WaitForNews(isTold ? std::nullopt : std::optional(timing.interval)) == WakeUp::Reason::end)
            return false;
    }
    return true;
}

bool WatchLoop::WaitForQuiet() {
    for (int i = 0; i < longestBurst; ++i) {
        if (!wakeUp.Pause(timing.quiet))
            return false;
        if (!wakeUp.HasNews())
            return true;
        static_cast<void>(AskForChanges()); // takes the news up
    }
    return true;
}

bool WatchLoop::AskForChanges() {
    const Tolvex::ChangeReport report = factory.GetChangesSince(seen);
    seen = report.now;
    hasFoldersToLookAt = report.hasLookedAtFolders;
    return report.askEachObserver || !report.changed.empty();
}

} // namespace TolvexPath
