#include "path_model/EntryDescriptor.h"

#include "path_utilities/PathEntryTypeRules.h"
#include "path_utilities/PathText.h"

namespace PathManagement {

using Tolvex::AbsoluteIRI;
using Tolvex::ustring;

namespace {

bool OwnsNamesOfItsOwn(PathEntryType type) {
    return type == PathEntryType::packageFolder || type == PathEntryType::methodFolder ||
           type == PathEntryType::uddClassFolder;
}

} // namespace

ustring DescribeEntry(const AbsoluteIRI& location, const TolvexPackages::IPackageDescriptorFactory& qualifiedNames) {
    const PathEntryType type = GetPathEntryTypeFromLocation(location);
    if (type == PathEntryType::mainFolder)
        return GetStringFromIRI(location);
    const AbsoluteIRI owner = location.getParent();
    if (!OwnsNamesOfItsOwn(type))
        return DescribeEntry(owner, qualifiedNames).append(u"/").append(location.getBaseName());
    const bool isQualified = OwnsNamesOfItsOwn(GetPathEntryTypeFromLocation(owner));
    return qualifiedNames.CreateQualifiedName(isQualified ? DescribeEntry(owner, qualifiedNames) : ustring(),
                                              GetNameWithoutMark(location.getBaseName()));
}

} // namespace PathManagement
