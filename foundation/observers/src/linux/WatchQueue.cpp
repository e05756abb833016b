#include "WatchQueue.h"

#include <cerrno>
#include <cstring>
#include <sys/inotify.h>
#include <unistd.h>

namespace Tolvex {

WatchQueue::~WatchQueue() {
    if (number >= 0)
        ::close(number);
}

bool WatchQueue::Open() noexcept {
    if (number < 0)
        number = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    error = number < 0 ? errno : 0;
    return number >= 0;
}

int WatchQueue::Add(const char* path, std::uint32_t mask) const noexcept {
    return ::inotify_add_watch(number, path, mask | IN_MASK_ADD);
}

void WatchQueue::Remove(int descriptor) const noexcept {
    // Fails for a folder that is gone already, and with it its watch.
    static_cast<void>(::inotify_rm_watch(number, descriptor));
}

std::size_t WatchQueue::ReadSome() noexcept {
    for (;;) {
        const auto size = ::read(number, buffer.data(), buffer.size());
        if (size >= 0)
            return static_cast<std::size_t>(size);
        if (errno != EINTR)
            return 0;
    }
}

WatchQueue::Event WatchQueue::Parse(std::size_t& at) const noexcept {
    inotify_event event{};
    std::memcpy(&event, buffer.data() + at, sizeof event);
    const char* const name = buffer.data() + at + sizeof event;
    at += sizeof event + event.len;
    return {event.wd, event.mask, event.len == 0 ? std::string_view() : std::string_view(name)};
}

} // namespace Tolvex
