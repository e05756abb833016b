#pragma once

#include "foundation/text/ustring.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

/// A value of the environment's language, as it crosses between the interpreter and built-in functions. What it is made
/// of is known to the operations below alone. Never changes once it is made; safe from any thread.
struct vxArray;

namespace TolvexArrays {

using Tolvex::ustring;
using Tolvex::ustring_view;

enum class ArrayKind : std::uint32_t {
    character = 0, ///< a matrix of 16-bit code units; a text is one row of it
    string = 1,    ///< a matrix whose elements are whole texts, any of which may be missing
    numeric = 2,   ///< a number
    logical = 3,   ///< true or false
};

/// Frees an array. Null is passed over.
KX_EXPORT void DestroyArray(vxArray* array) noexcept;

struct ArrayDeleter {
    void operator()(vxArray* array) const noexcept { DestroyArray(array); }
};

/// Owns an array, from its making until it is handed over (`release`).
using ArrayOwner = std::unique_ptr<vxArray, ArrayDeleter>;

/// One row of characters.
[[nodiscard]] KX_EXPORT ArrayOwner MakeCharacterVector(ustring_view text);

/// Rows of characters; without a row, the empty text of 0 by 0. Throws std::invalid_argument when the rows differ in
/// length.
[[nodiscard]] KX_EXPORT ArrayOwner MakeCharacterMatrix(std::span<const ustring> rows);

/// A text without a value is a missing one.
[[nodiscard]] KX_EXPORT ArrayOwner MakeStringScalar(std::optional<ustring> text);

/// One column of texts.
[[nodiscard]] KX_EXPORT ArrayOwner MakeStringColumn(std::vector<std::optional<ustring>> texts);

[[nodiscard]] KX_EXPORT ArrayOwner MakeNumericScalar(double number);
[[nodiscard]] KX_EXPORT ArrayOwner MakeLogicalScalar(bool truth);

[[nodiscard]] KX_EXPORT ArrayKind GetKind(const vxArray& array) noexcept;
[[nodiscard]] KX_EXPORT std::size_t GetRowCount(const vxArray& array) noexcept;
[[nodiscard]] KX_EXPORT std::size_t GetColumnCount(const vxArray& array) noexcept;

/// The characters, row after row; empty for other kinds. Valid as long as the array; so are the next two.
[[nodiscard]] KX_EXPORT ustring_view GetCharacters(const vxArray& array) noexcept;

/// The elements of a string array; empty for other kinds.
[[nodiscard]] KX_EXPORT std::span<const std::optional<ustring>> GetStrings(const vxArray& array) noexcept;

/// The text of an array that String::isNonMissingScalarText accepts; no value for any other.
[[nodiscard]] KX_EXPORT std::optional<ustring_view> GetScalarText(const vxArray& array) noexcept;

/// No value for other kinds; so is the next.
[[nodiscard]] KX_EXPORT std::optional<double> GetNumber(const vxArray& array) noexcept;
[[nodiscard]] KX_EXPORT std::optional<bool> GetTruth(const vxArray& array) noexcept;

namespace String {

/// Whether an array is one text: one row of characters, the empty text of 0 by 0 characters, or a string array with
/// exactly one element, which is not missing.
[[nodiscard]] KX_EXPORT bool isNonMissingScalarText(const vxArray& array) noexcept;

} // namespace String

} // namespace TolvexArrays
