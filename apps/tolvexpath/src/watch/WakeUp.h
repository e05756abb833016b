#pragma once

#include "foundation/observers/IFileFolderObserverFactory.h"

#include <chrono>
#include <optional>

namespace TolvexPath {

/// What a program that stays waits for: news of folders, and the wish that it end. As long as one lives, an interrupt
/// (Ctrl-C), SIGTERM and SIGHUP are such a wish, and so is that nobody reads the standard output any more; a write to
/// it then fails, now and later, instead of ending the process. One a process.
class WakeUp {
public:
    using Duration = std::chrono::milliseconds;
    enum class Reason { news, timeOut, end };

    /// `news` is ready when there is some; empty where nothing tells. Throws std::system_error.
    explicit WakeUp(std::optional<Tolvex::WaitHandle> news);
    ~WakeUp();
    WakeUp(const WakeUp&) = delete;
    WakeUp& operator=(const WakeUp&) = delete;

    /// Whether news ever end a wait.
    [[nodiscard]] bool HearsNews() const noexcept { return news.has_value(); }
    [[nodiscard]] bool HasNews() const { return Wait(Duration::zero(), news) == Reason::news; }

    /// Waits for anything, at most so long if there is a limit.
    [[nodiscard]] Reason WaitForNews(std::optional<Duration> limit) const { return Wait(limit, news); }
    /// Waits so long whatever the news. False when it has to end.
    [[nodiscard]] bool Pause(Duration length) const { return Wait(length, std::nullopt) != Reason::end; }

private:
    [[nodiscard]] static Reason Wait(std::optional<Duration> limit, std::optional<Tolvex::WaitHandle> news);

    std::optional<Tolvex::WaitHandle> news;
};

} // namespace TolvexPath
