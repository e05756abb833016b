#pragma once

#include "foundation/text/Export.h"

namespace PathManagement {

/// Called by a host when it loads and unloads the library. Both do nothing: everything is set up on first use and torn
/// down with the objects handed out and at the end of the process.
KX_EXPORT void initializeFcn();
KX_EXPORT void terminateFcn();

} // namespace PathManagement
