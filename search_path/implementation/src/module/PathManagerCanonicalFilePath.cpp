#include "search_path/PathManagerCanonicalFilePath.h"

#include "foundation/environment/RequiredContext.h"
#include "foundation/environment/StorageAccess.h"

#include <filesystem>

namespace PathManagement {

namespace {

using Tolvex::AbsoluteIRI;

AbsoluteIRI CleanByText(const AbsoluteIRI& location) {
    const std::filesystem::path path(Tolvex::ToUtf8(location.getPath()));
    return {location.getScheme(), Tolvex::FromUtf8(path.lexically_normal().native())};
}

AbsoluteIRI Canonicalise(const AbsoluteIRI& location) {
    const auto storage = TolvexStorageSystem::GetStorageSystemReference();
    return location.getScheme() == storage->getScheme() ? storage->canonicalise(location) : CleanByText(location);
}

bool HasNameOfItsOwn(const AbsoluteIRI& location) {
    const auto name = location.getBaseName();
    return !name.empty() && name != u"." && name != u"..";
}

AbsoluteIRI Resolve(const AbsoluteIRI& location) {
    if (!Tolvex::isRequiredContextActive())
        return CleanByText(location);
    if (!HasNameOfItsOwn(location))
        return Canonicalise(location);
    return Canonicalise(location.getParent()).getChild(location.getBaseName());
}

} // namespace

AbsoluteIRI PathManagerCanonicalFilePath(const AbsoluteIRI& location) {
    if (!location.hasParent())
        throw NoParentIRIException(location);
    AbsoluteIRI resolved = Resolve(location);
    if (!resolved.hasParent())
        throw NoParentIRIException(location);
    return resolved;
}

} // namespace PathManagement
