#include "path_utilities/PartialPathname.h"

namespace PathManagement {

using Tolvex::ustring_view;

PathnameComponents SplitPartialPathname(ustring_view partialPath) {
    PathnameComponents components;
    while (!partialPath.empty()) {
        const std::size_t separator = partialPath.find_first_of(Constants::PathnameSeparatorStr);
        const ustring_view name = partialPath.substr(0, separator);
        if (!name.empty())
            components.push_back(name);
        partialPath.remove_prefix(separator == ustring_view::npos ? partialPath.size() : separator + 1);
    }
    return components;
}

bool DoesPartialPathnameMatchPathEntryIRI(std::span<const ustring_view> components, const Tolvex::AbsoluteIRI& location,
                                          const Tolvex::PathComparator& comparator) noexcept {
    ustring_view path = location.getPath();
    for (auto component = components.rbegin(); component != components.rend(); ++component) {
        const std::size_t separator = path.rfind(u'/');
        if (separator == ustring_view::npos)
            return false;
        const ustring_view name = path.substr(separator + 1);
        if (!comparator(name, *component, Tolvex::CaseModifier::fileSystemRule))
            return false;
        path = path.substr(0, separator);
    }
    return true;
}

} // namespace PathManagement
