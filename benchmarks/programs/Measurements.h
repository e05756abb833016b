#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

namespace KxBenchmarks {

/// Writes one measurement to standard output, a JSON line.
void Report(const char* row, const std::string& contender, double value);

/// Calls `measure` with every number read from standard input; a line "done" follows what it reports.
void ServeRounds(const std::function<void(std::uint32_t)>& measure);

/// How long `work` takes, in milliseconds.
template <class Work>
[[nodiscard]] double MeasureMilliseconds(const Work& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// The median of so many values that `measure` returns.
[[nodiscard]] double MedianOf(std::size_t count, const std::function<double()>& measure);

} // namespace KxBenchmarks
