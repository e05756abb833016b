#include "ProgressLine.h"

#include "Terminal.h"

#include <fmt/core.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <stop_token>
#include <utility>

namespace TolvexPath {

namespace {

constexpr auto firstDelay = std::chrono::seconds(1);
constexpr auto interval = std::chrono::milliseconds(200);
constexpr const char* wipeLine = "\r\x1b[K";

void ShowUntilStopped(const std::stop_token& stop, const std::function<std::string()>& describe) {
    std::mutex mutex;
    std::condition_variable_any wakeUp;
    std::unique_lock lock(mutex);
    const auto isStopped = [&stop] { return stop.stop_requested(); };
    if (wakeUp.wait_for(lock, stop, firstDelay, isStopped))
        return;
    do {
        fmt::print(stderr, "{}{}", wipeLine, describe());
    } while (!wakeUp.wait_for(lock, stop, interval, isStopped));
    fmt::print(stderr, "{}", wipeLine);
}

} // namespace

ProgressLine::ProgressLine(std::function<std::string()> describe) {
    if (!IsTerminal(StandardChannel::error))
        return;
    thread = std::jthread(
        [describe = std::move(describe)](const std::stop_token& stop) { ShowUntilStopped(stop, describe); });
}

} // namespace TolvexPath
