#pragma once

/// Marks what is visible outside the shared library that defines it. Everything else is compiled with hidden
/// visibility.
#define KX_EXPORT __attribute__((visibility("default")))
