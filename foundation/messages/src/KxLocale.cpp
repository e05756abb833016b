#include "foundation/messages/KxLocale.h"

#include <utility>

namespace Tolvex {

KxLocale::KxLocale(std::string name) : name(std::move(name)) {}

const KxLocale& KxLocale::global() {
    static const KxLocale locale("en");
    return locale;
}

} // namespace Tolvex
