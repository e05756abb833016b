#include "watch/WakeUp.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

namespace TolvexPath {

namespace {

constexpr std::array endingSignals = {SIGINT, SIGTERM, SIGHUP};

// A signal's handler reaches nothing but what is global. A byte in the pipe is the wish that came.
std::array<int, 2> wishes = {-1, -1};
std::array<struct sigaction, endingSignals.size()> actionsBefore;

void NoteWish(int) {
    const int error = errno;
    const char byte = 0;
    [[maybe_unused]] const auto written = ::write(wishes[1], &byte, 1); // a full pipe holds a wish already
    errno = error;
}

} // namespace

WakeUp::WakeUp(std::optional<Tolvex::WaitHandle> news) : news(news) {
    if (::pipe2(wishes.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        throw std::system_error(errno, std::generic_category(), "cannot wait for signals");
    struct sigaction action {};
    action.sa_handler = NoteWish;
    for (std::size_t i = 0; i < endingSignals.size(); ++i)
        ::sigaction(endingSignals[i], &action, &actionsBefore[i]);
    std::signal(SIGPIPE, SIG_IGN);
}

WakeUp::~WakeUp() {
    for (std::size_t i = 0; i < endingSignals.size(); ++i)
        ::sigaction(endingSignals[i], &actionsBefore[i], nullptr);
    for (int& end : wishes)
        ::close(std::exchange(end, -1));
}

WakeUp::Reason WakeUp::Wait(std::optional<Duration> limit, std::optional<Tolvex::WaitHandle> news) {
    std::array<pollfd, 3> sources = {pollfd{wishes[0], POLLIN, 0}, pollfd{STDOUT_FILENO, 0, 0}, // errors come unasked
                                     pollfd{news ? static_cast<int>(*news) : -1, POLLIN, 0}};
    while (::poll(sources.data(), sources.size(), limit ? static_cast<int>(limit->count()) : -1) < 0)
        if (errno != EINTR)
            throw std::system_error(errno, std::generic_category(), "cannot wait");
    if (sources[0].revents != 0 || sources[1].revents != 0)
        return Reason::end;
    return sources[2].revents != 0 ? Reason::news : Reason::timeOut;
}

} // namespace TolvexPath
