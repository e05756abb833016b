#include "programs/Measurements.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <vector>

namespace KxBenchmarks {

void Report(const char* row, const std::string& contender, double value) {
    fmt::print("{{\"row\": \"{}\", \"contender\": \"{}\", \"value\": {}}}\n", row, contender, value);
}

void ServeRounds(const std::function<void(std::uint32_t)>& measure) {
    for (std::uint32_t round = 0; std::cin >> round;) {
        measure(round);
        fmt::print("done\n");
        std::fflush(stdout);
    }
}

double MedianOf(std::size_t count, const std::function<double()>& measure) {
    std::vector<double> values(count);
    std::ranges::generate(values, measure);
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(count / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

} // namespace KxBenchmarks
