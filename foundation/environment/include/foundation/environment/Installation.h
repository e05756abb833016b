#pragma once

#include "foundation/storage/AbsoluteIRI.h"

namespace Tolvex {

/// The environment's installation folder as a native path: the value of TOLVEX_ROOT when it is set to an absolute path,
/// else the folder above the one that holds the running program. Read anew at each call. Throws InternalException when
/// neither is known.
[[nodiscard]] KX_EXPORT ustring get_install_path();

/// Brings a path text into the form the system uses: on Linux, repeated and trailing "/" are dropped, but for the
/// root's own.
[[nodiscard]] KX_EXPORT ustring make_native_form(ustring_view path);

/// An IRI of scheme `scheme` for an absolute native path. Throws std::invalid_argument for any other path.
[[nodiscard]] KX_EXPORT AbsoluteIRI toAbsoluteIRI(ustring_view nativePath, std::string_view scheme = "file");

} // namespace Tolvex
