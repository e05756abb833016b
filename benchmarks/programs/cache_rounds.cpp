// cache_rounds FILE: reads a path cache file with everybody who can, a round for every number read from standard input.
// Results are JSON lines; a line "done" follows each round.
#include "programs/CacheParsers.h"
#include "programs/Measurements.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace {

using namespace KxBenchmarks;

/// Whoever comes first finds the memory in another state, so the turn goes round.
void MeasureRound(std::vector<CacheParser>& parsers, const std::string& file) {
    std::ranges::rotate(parsers, parsers.begin() + 1);
    const CacheReading first = parsers.front().read(file);
    for (const CacheParser& parser : parsers) {
        const CacheReading reading = parser.read(file);
        if (reading.folders != first.folders || reading.files != first.files || reading.files == 0)
            throw std::runtime_error(parser.name + " saw another number of folders or files");
        Report("c1", parser.name, reading.milliseconds);
    }
}

} // namespace

int main(int count, char** arguments) {
    try {
        const std::string file = count == 2 ? arguments[1] : "";
        auto parsers = GetCacheParsers();
        ServeRounds([&](std::uint32_t) { MeasureRound(parsers, file); });
        return 0;
    } catch (const std::exception& problem) {
        fmt::print(stderr, "cache_rounds: {}\n", problem.what());
        return 1;
    }
}
