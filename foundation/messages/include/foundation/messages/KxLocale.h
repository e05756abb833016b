#pragma once

#include "foundation/text/ustring.h"

#include <string>

namespace Tolvex {

/// Names the language and the region that texts are made for. A value; safe from any thread.
class KX_EXPORT KxLocale {
public:
    explicit KxLocale(std::string name);

    /// The locale of the process's messages. With the embedded catalogue, which speaks English alone, always "en".
    [[nodiscard]] static const KxLocale& global();

    [[nodiscard]] const std::string& GetName() const noexcept { return name; }

    bool operator==(const KxLocale&) const = default;

private:
    std::string name;
};

} // namespace Tolvex
