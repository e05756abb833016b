#pragma once

#include "foundation/text/Export.h"

namespace Tolvex {

/// Whether the host's context is set up in which services may be asked on behalf of code, the storage system among
/// them. It is from the beginning; a host that starts or ends in stages says when it is not. One for the process; safe
/// from any thread.
[[nodiscard]] KX_EXPORT bool isRequiredContextActive() noexcept;

/// For the host alone.
KX_EXPORT void setRequiredContextActive(bool active) noexcept;

} // namespace Tolvex
