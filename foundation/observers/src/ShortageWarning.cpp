#include "ShortageWarning.h"

#include <utility>

namespace Tolvex {

void ShortageWarning::Raise(const std::string& text) {
    if (Keep(text))
        log.Write(1, text);
}

std::string ShortageWarning::Take() {
    const std::scoped_lock lock(mutex);
    return std::exchange(pending, {});
}

bool ShortageWarning::Keep(const std::string& text) {
    const auto when = setting.load();
    const std::scoped_lock lock(mutex);
    if (when == ChangeHandleWarning::never || (when == ChangeHandleWarning::once && wasRaised))
        return false;
    wasRaised = true;
    pending = text;
    return true;
}

} // namespace Tolvex
