#pragma once

#include <cstdint>

namespace KxBenchmarks {

/// Bytes of this process that are in memory now, counted page by page (the sum that the kernel keeps at hand may be
/// late). Throws std::runtime_error where the system does not tell.
[[nodiscard]] std::uint64_t GetResidentBytes();

} // namespace KxBenchmarks
