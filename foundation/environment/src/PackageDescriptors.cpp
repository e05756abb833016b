#include "foundation/environment/PackageDescriptors.h"

namespace TolvexPackages {

namespace {

class PackageDescriptorFactory : public IPackageDescriptorFactory {
public:
    [[nodiscard]] Tolvex::ustring CreateQualifiedName(Tolvex::ustring_view ownerName,
                                                      Tolvex::ustring_view name) const override {
        Tolvex::ustring qualified(ownerName);
        if (!qualified.empty())
            qualified += u'.';
        return qualified.append(name);
    }
};

} // namespace

const IPackageDescriptorFactory& GetPackageDescriptorFactory() {
    static const PackageDescriptorFactory factory;
    return factory;
}

} // namespace TolvexPackages
