#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace Tolvex {

/// Which limit a refused watch has met, remembered when it is met, since watches may be free again when somebody asks.
/// Told to people with its value and the cure. Nothing here changes a limit.
class WatchShortage {
public:
    /// So many watches this process takes when nobody says how many: half of those that the system gives to a user.
    /// Without a value when the system does not tell.
    [[nodiscard]] static std::optional<std::size_t> GetShare();

    /// All watches that somebody allowed are taken, so many.
    void MeetOwnLimit(std::size_t allowed) noexcept { *this = WatchShortage(Cause::ownLimit, allowed, 0); }
    /// All `share` watches that this process takes by itself are taken.
    void MeetShare(std::size_t share) noexcept { *this = WatchShortage(Cause::share, share, 0); }
    /// The system refused one more watch, for the reason `number`.
    void MeetRefusal(int number) noexcept { *this = WatchShortage(Cause::refusal, 0, number); }
    /// The system refused to make a queue, for the reason `number`.
    void MissQueue(int number) noexcept { *this = WatchShortage(Cause::noQueue, 0, number); }

    /// Empty when no limit was met.
    [[nodiscard]] std::string Describe() const;

    WatchShortage() = default;

private:
    enum class Cause { none, ownLimit, share, refusal, noQueue };

    WatchShortage(Cause cause, std::size_t limit, int error) noexcept : cause(cause), limit(limit), error(error) {}

    Cause cause = Cause::none;
    std::size_t limit = 0;
    int error = 0; // the system's number
};

} // namespace Tolvex
