#include "foundation/environment/Installation.h"

#include "foundation/messages/Exceptions.h"

#include "linux/ProcessLinks.h"

#include <cstdlib>

namespace Tolvex {

namespace {

constexpr auto rootVariable = "TOLVEX_ROOT";

AbsoluteIRI GetParentOrRoot(const AbsoluteIRI& location) {
    return location.hasParent() ? location.getParent() : location;
}

} // namespace

ustring get_install_path() {
    if (const char* const root = std::getenv(rootVariable); root != nullptr && *root == '/')
        return make_native_form(FromUtf8(root));
    const auto program = GetProgramPath();
    if (!program)
        throw InternalException(std::string("The installation folder is not known. Set ") + rootVariable + " to it.");
    const AbsoluteIRI programFolder = GetParentOrRoot(toAbsoluteIRI(FromUtf8(*program)));
    return ustring(GetParentOrRoot(programFolder).getPath());
}

ustring make_native_form(ustring_view path) {
    ustring native;
    native.reserve(path.size());
    for (const char16_t unit : path) {
        if (unit != u'/' || !native.ends_with(u'/'))
            native += unit;
    }
    if (native.size() > 1 && native.ends_with(u'/'))
        native.pop_back();
    return native;
}

AbsoluteIRI toAbsoluteIRI(ustring_view nativePath, std::string_view scheme) {
    return {scheme, nativePath};
}

} // namespace Tolvex
