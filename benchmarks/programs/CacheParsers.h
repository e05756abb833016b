#pragma once

#include <string>
#include <vector>

namespace KxBenchmarks {

/// One reading of a path cache file, and what was seen in it.
struct CacheReading {
    std::size_t folders = 0;
    std::size_t files = 0;
    double milliseconds = 0; ///< until everything was delivered; not counting what is done with it then
};

/// Whoever parses path cache files. Throws std::runtime_error when a file cannot be read.
struct CacheParser {
    std::string name;
    CacheReading (*read)(const std::string& file);
};

/// The project's reader; one that builds a document in memory; one that calls back for every element.
[[nodiscard]] std::vector<CacheParser> GetCacheParsers();

} // namespace KxBenchmarks
