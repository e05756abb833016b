#include "programs/ResidentMemory.h"

#include <fstream>
#include <stdexcept>
#include <string>

namespace KxBenchmarks {

std::uint64_t GetResidentBytes() {
    std::ifstream lines("/proc/self/smaps_rollup");
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("Rss:"))
            return std::stoull(line.substr(4)) * 1024;
    }
    throw std::runtime_error("the system does not tell how much memory is resident");
}

} // namespace KxBenchmarks
