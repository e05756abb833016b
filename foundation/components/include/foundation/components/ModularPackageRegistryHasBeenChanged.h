#pragma once

namespace TolvexComponents {

/// Components came, went or were replaced. Published after the change, on the host's event manager.
struct ModularPackageRegistryHasBeenChanged {};

} // namespace TolvexComponents
