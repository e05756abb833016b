#include "WaitDescriptor.h"

#include <cstdint>
#include <fcntl.h>
#include <sys/epoll.h>
#include <unistd.h>

namespace Tolvex {
namespace {

bool Include(int group, int number, std::uint32_t events) noexcept {
    epoll_event wanted{};
    wanted.events = events;
    return ::epoll_ctl(group, EPOLL_CTL_ADD, number, &wanted) == 0;
}

} // namespace

std::optional<WaitDescriptor> WaitDescriptor::Open(int queueNumber) noexcept {
    const int group = ::epoll_create1(EPOLL_CLOEXEC);
    if (group < 0)
        return std::nullopt;
    WaitDescriptor descriptor(group, ::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC));
    if (descriptor.mountTable >= 0)
        static_cast<void>(Include(group, descriptor.mountTable, EPOLLPRI)); // rare enough to do without
    if (!Include(group, queueNumber, EPOLLIN))
        return std::nullopt;
    return descriptor;
}

WaitDescriptor::~WaitDescriptor() {
    if (mountTable >= 0)
        ::close(mountTable);
    if (number >= 0)
        ::close(number);
}

} // namespace Tolvex
