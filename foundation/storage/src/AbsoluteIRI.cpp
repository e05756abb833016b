#include "foundation/storage/AbsoluteIRI.h"

#include "IRIEscapes.h"
#include "PathText.h"
#include "foundation/diagnostics/Terminate.h"
#include "foundation/text/NameHash.h"

#include <stdexcept>

namespace Tolvex {
namespace {

constexpr char ToLowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}
constexpr bool IsLetter(char c) {
    return ToLowerAscii(c) >= 'a' && ToLowerAscii(c) <= 'z';
}

bool IsScheme(std::string_view scheme) {
    const auto fits = [](char c) { return IsLetter(c) || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.'; };
    return !scheme.empty() && IsLetter(scheme.front()) && std::all_of(scheme.begin(), scheme.end(), fits);
}

std::string CheckScheme(std::string_view scheme) {
    if (!IsScheme(scheme))
        throw std::invalid_argument("not a scheme of an IRI");
    std::string lower(scheme);
    std::transform(lower.begin(), lower.end(), lower.begin(), ToLowerAscii);
    return lower;
}

/// Whether a path that begins with a separator holds no empty name.
bool IsTidy(ustring_view path) noexcept {
    bool isTidy = path.back() != u'/';
    for (std::size_t i = 1; i < path.size(); ++i)
        isTidy &= path[i] != u'/' || path[i - 1] != u'/';
    return isTidy;
}

ustring CheckPath(ustring_view path) {
    if (!path.starts_with(u'/') || ContainsUnit(path, u'\0'))
        throw std::invalid_argument("not an absolute path");
    if (IsTidy(path))
        return ustring(path);
    ustring tidy;
    tidy.reserve(path.size());
    ForEachName(path, [&](ustring_view name) { AppendName(tidy, name); });
    return tidy.empty() ? ustring(u"/") : tidy;
}

/// A path as the beginning of the paths below it: the root's is empty.
ustring_view AsPrefix(ustring_view path) noexcept {
    return path == u"/" ? ustring_view() : path;
}

} // namespace

struct AbsoluteIRI::Text {
    Text(std::string scheme, ustring path)
        : scheme(std::move(scheme)), path(std::move(path)), hash(HashName(this->path)) {}

    std::string scheme;
    ustring path;
    std::size_t hash; // of the path alone: one table seldom holds two schemes
};

AbsoluteIRI::AbsoluteIRI() noexcept = default;

AbsoluteIRI::AbsoluteIRI(std::string_view scheme, ustring_view path)
    : text(std::make_shared<const Text>(CheckScheme(scheme), CheckPath(path))) {}

AbsoluteIRI::AbsoluteIRI(std::shared_ptr<const Text> text) noexcept : text(std::move(text)) {}

std::optional<AbsoluteIRI> AbsoluteIRI::fromString(ustring_view text) {
    const auto colon = text.find(u"://");
    if (colon == ustring_view::npos)
        return std::nullopt;
    const auto scheme = ToUtf8(text.substr(0, colon));
    const auto path = UnescapePath(text.substr(colon + 3));
    if (!IsScheme(scheme) || !path || !path->starts_with(u'/'))
        return std::nullopt;
    return AbsoluteIRI(scheme, *path);
}

bool AbsoluteIRI::isEmpty() const noexcept {
    return text == nullptr;
}

std::string_view AbsoluteIRI::getScheme() const noexcept {
    return text ? std::string_view(text->scheme) : "";
}

ustring_view AbsoluteIRI::getPath() const noexcept {
    return text ? ustring_view(text->path) : ustring_view();
}

ustring_view AbsoluteIRI::getBaseName() const noexcept {
    const auto path = getPath();
    return path.substr(path.rfind(u'/') + 1);
}

ustring AbsoluteIRI::toString() const {
    if (isEmpty())
        return {};
    return FromUtf8(text->scheme) + u"://" + EscapePath(text->path);
}

bool AbsoluteIRI::hasParent() const noexcept {
    return getPath().size() > 1;
}

AbsoluteIRI AbsoluteIRI::getParent() const {
    if (!hasParent())
        DiagnosticTerminate("Only a folder below the root has a parent.");
    const auto slash = text->path.rfind(u'/');
    return AbsoluteIRI(
        std::make_shared<const Text>(text->scheme, text->path.substr(0, std::max<std::size_t>(slash, 1))));
}

AbsoluteIRI AbsoluteIRI::getChild(ustring_view name) const {
    constexpr ustring_view forbidden(u"/\0", 2);
    if (isEmpty() || name.empty() || name.find_first_of(forbidden) != ustring_view::npos)
        DiagnosticTerminate("A child needs a parent and a name without separators.");
    const auto prefix = AsPrefix(text->path);
    ustring path;
    path.reserve(prefix.size() + 1 + name.size());
    path = prefix;
    AppendName(path, name);
    return AbsoluteIRI(std::make_shared<const Text>(text->scheme, std::move(path)));
}

bool AbsoluteIRI::isAncestorOf(const AbsoluteIRI& other) const noexcept {
    if (isEmpty() || !other.hasParent() || getScheme() != other.getScheme())
        return false;
    const auto prefix = AsPrefix(getPath());
    const auto path = other.getPath();
    return path.size() > prefix.size() && path[prefix.size()] == u'/' && path.starts_with(prefix);
}

std::optional<ustring> AbsoluteIRI::makePathRelativeTo(const AbsoluteIRI& root) const {
    if (*this == root)
        return ustring();
    if (!root.isAncestorOf(*this))
        return std::nullopt;
    return ustring(getPath().substr(AsPrefix(root.getPath()).size() + 1));
}

std::size_t AbsoluteIRI::hashValue() const noexcept {
    return text ? text->hash : 0;
}

bool operator==(const AbsoluteIRI& a, const AbsoluteIRI& b) noexcept {
    if (a.text == b.text)
        return true;
    return a.text && b.text && a.text->hash == b.text->hash && a.text->path == b.text->path &&
           a.text->scheme == b.text->scheme;
}

std::strong_ordering operator<=>(const AbsoluteIRI& a, const AbsoluteIRI& b) noexcept {
    if (const auto order = a.getScheme() <=> b.getScheme(); order != 0)
        return order;
    return a.getPath() <=> b.getPath();
}

} // namespace Tolvex
