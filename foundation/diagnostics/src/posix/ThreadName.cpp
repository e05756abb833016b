#include "foundation/diagnostics/ThreadName.h"

#include <pthread.h>

#include <algorithm>
#include <array>

namespace Tolvex {

namespace {

constexpr std::size_t kernelLimit = 15; // bytes, without the zero at the end

// Nothing to destroy, so the name can still be asked for while the thread or the process winds up.
struct Name {
    std::array<char, maximumThreadNameLength> bytes;
    std::size_t length;
};
constinit thread_local Name currentName{};

/// The longest start of `name` that fits and does not end inside a UTF-8 sequence.
std::string_view Shorten(std::string_view name, std::size_t limit) {
    if (name.size() <= limit)
        return name;
    while (limit != 0 && (static_cast<unsigned char>(name[limit]) & 0xC0U) == 0x80)
        --limit;
    return name.substr(0, limit);
}

} // namespace

void setCurrentThreadName(std::string_view name) {
    const std::string_view kept = Shorten(name, currentName.bytes.size());
    std::copy(kept.begin(), kept.end(), currentName.bytes.begin());
    currentName.length = kept.size();
    pthread_setname_np(pthread_self(), std::string(Shorten(name, kernelLimit)).c_str());
}

std::string getCurrentThreadName() {
    return {currentName.bytes.data(), currentName.length};
}

} // namespace Tolvex
