#pragma once

#include "foundation/text/ustring.h"

#include <compare>
#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>

namespace Tolvex {

/// The absolute name of a file or folder in one of the process's storage systems: a scheme ("file", "memory") and a
/// path that starts with "/". Immutable and shared: a copy is one counted handle. Spelling only: two IRIs may name one
/// folder.
///
/// The path is kept as plain text, one "/" between names and none at the end (but for the root itself); "." and ".."
/// are kept as they were given. `toString` percent-encodes what an IRI may not hold, so that any name survives.
class KX_EXPORT AbsoluteIRI {
public:
    /// The empty IRI: no scheme, no path.
    AbsoluteIRI() noexcept;

    /// An IRI from a scheme and an absolute path text; repeated and trailing "/" are dropped.
    /// Throws std::invalid_argument when `path` does not start with "/" or holds a zero, and when `scheme` is none.
    AbsoluteIRI(std::string_view scheme, ustring_view path);

    /// Reads what toString writes. No value when `text` is not an absolute IRI with an empty host.
    [[nodiscard]] static std::optional<AbsoluteIRI> fromString(ustring_view text);

    [[nodiscard]] bool isEmpty() const noexcept;
    [[nodiscard]] std::string_view getScheme() const noexcept;
    /// Valid while this IRI, or a copy of it, lives; so are the views below.
    [[nodiscard]] ustring_view getPath() const noexcept;
    /// The last name of the path; empty for the root.
    [[nodiscard]] ustring_view getBaseName() const noexcept;
    /// "file:///a%20b".
    [[nodiscard]] ustring toString() const;

    [[nodiscard]] bool hasParent() const noexcept;
    /// REQUIRES: hasParent(). Drops the last name, as spelled.
    [[nodiscard]] AbsoluteIRI getParent() const;
    /// REQUIRES: this is not empty; `name` is not empty and holds neither "/" nor a zero.
    [[nodiscard]] AbsoluteIRI getChild(ustring_view name) const;

    /// True when `other` lies below this folder, at any depth; false for the folder itself. Compares spellings.
    [[nodiscard]] bool isAncestorOf(const AbsoluteIRI& other) const noexcept;
    /// The part of this path behind `root`'s, without a leading "/"; empty for the root itself.
    /// No value when `root` is neither this folder nor an ancestor of it.
    [[nodiscard]] std::optional<ustring> makePathRelativeTo(const AbsoluteIRI& root) const;

    [[nodiscard]] std::size_t hashValue() const noexcept;
    friend KX_EXPORT bool operator==(const AbsoluteIRI& a, const AbsoluteIRI& b) noexcept;
    friend KX_EXPORT std::strong_ordering operator<=>(const AbsoluteIRI& a, const AbsoluteIRI& b) noexcept;

private:
    struct Text;
    explicit AbsoluteIRI(std::shared_ptr<const Text> text) noexcept;
    std::shared_ptr<const Text> text; // null for the empty IRI
};

/// For std::unordered containers: std::unordered_set<AbsoluteIRI, IRIHash>.
struct IRIHash {
    // Not noexcept, though it throws nothing: libstdc++ then keeps the hash in each node, which spares a look at every
    // key of a bucket.
    std::size_t operator()(const AbsoluteIRI& iri) const { return iri.hashValue(); }
};

} // namespace Tolvex
