#include "path_utilities/PathText.h"

#include "foundation/environment/Installation.h"
#include "foundation/storage/StorageError.h"

namespace PathManagement {

using Tolvex::AbsoluteIRI;
using Tolvex::ustring;
using Tolvex::ustring_view;

namespace {

constexpr std::string_view diskScheme = "file";

[[noreturn]] void RefuseText(ustring_view text) {
    throw Tolvex::StorageError(ustring(text));
}

bool HoldsZero(ustring_view text) {
    return text.find(u'\0') != ustring_view::npos;
}

} // namespace

ustring GetStringFromIRI(const AbsoluteIRI& location) {
    return location.getScheme() == diskScheme ? ustring(location.getPath()) : location.toString();
}

AbsoluteIRI GetIRIFromString(ustring_view text) {
    if (HoldsZero(text))
        RefuseText(text);
    if (text.starts_with(u'/'))
        return Tolvex::toAbsoluteIRI(Tolvex::make_native_form(text), diskScheme);
    if (const auto location = AbsoluteIRI::fromString(text))
        return *location;
    RefuseText(text);
}

Tolvex::CanonicalAbsoluteIRI CanonicalizeRelativePathAgainstCWD(ustring_view path, const AbsoluteIRI& workingFolder) {
    if (path.empty() || HoldsZero(path))
        RefuseText(path);
    if (path.starts_with(u'/'))
        return {AbsoluteIRI(workingFolder.getScheme(), path), {}};
    return {workingFolder, path};
}

} // namespace PathManagement
