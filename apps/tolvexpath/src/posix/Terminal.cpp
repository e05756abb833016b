#include "Terminal.h"

#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace TolvexPath {

bool IsTerminal(StandardChannel channel) noexcept {
    return ::isatty(static_cast<int>(channel)) == 1;
}

bool ShowsColour(StandardChannel channel) noexcept {
    if (!IsTerminal(channel))
        return false;
    const char* const refusal = std::getenv("NO_COLOR");
    if (refusal != nullptr && *refusal != '\0')
        return false;
    const char* const kind = std::getenv("TERM");
    return kind != nullptr && std::string_view(kind) != "dumb";
}

} // namespace TolvexPath
