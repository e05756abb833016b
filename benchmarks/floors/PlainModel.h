#pragma once

#include <memory>
#include <string>
#include <vector>

namespace KxBenchmarks {

/// A path as it is written down without a thought for its size: every file an object of its own with four strings.
struct PlainItem {
    std::u16string stem;
    std::u16string extension;
    std::u16string normalizedStem;
    std::u16string location;
};

struct PlainEntry {
    std::u16string location;
    std::vector<std::shared_ptr<const PlainItem>> items;
};

using PlainPath = std::vector<std::shared_ptr<const PlainEntry>>;

} // namespace KxBenchmarks
