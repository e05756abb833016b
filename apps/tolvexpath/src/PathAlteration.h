#pragma once

#include "foundation/messages/Notification.h"

#include <functional>

namespace TolvexPath {

/// Makes a change of the path and gives what is to be told of it: what the change itself put into its notification,
/// then, when it was refused as a whole, why: PathAlterationNotSupported by the manager's policy,
/// UnableToModifyTolvexpath from inside another change, nomem for want of memory. Whatever else the change throws
/// passes through. A refused change has changed nothing.
[[nodiscard]] Tolvex::Notification AlterPath(const std::function<void(Tolvex::Notification&)>& change);

} // namespace TolvexPath
