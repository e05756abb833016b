#include "foundation/components/ComponentFeature.h"
#include "foundation/components/IPackageRegistrar.h"
#include "main_manager/SearchPathPublicFunctions.h"
#include "module/GatewayArguments.h"
#include "path_utilities/PathText.h"
#include "search_path/BuiltIns.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace PathManagement {

namespace {

using Packages = TolvexPackages::IPackageRegistry::Packages;

/// Numbers beyond it stand for several whole numbers each.
constexpr double largestExactNumber = 9'007'199'254'740'992.0; // 2^53

std::optional<std::uint64_t> ReadNumber(double number) {
    if (!(number >= 0 && number <= largestExactNumber && std::trunc(number) == number))
        return std::nullopt;
    return static_cast<std::uint64_t>(number);
}

std::optional<std::uint64_t> ReadDigits(Tolvex::ustring_view text) {
    const std::string digits = Tolvex::ToUtf8(text);
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return error == std::errc() && end == digits.data() + digits.size() ? std::optional(number) : std::nullopt;
}

std::uint64_t GetPoint(const vxArray& input) {
    std::optional<std::uint64_t> point;
    if (const auto number = TolvexArrays::GetNumber(input))
        point = ReadNumber(*number);
    else if (const auto text = TolvexArrays::GetScalarText(input))
        point = ReadDigits(*text);
    if (!point)
        TolvexArrays::RaiseHostError({"TOLVEX:tpath", "invalidInstallationPoint", {}});
    return *point;
}

/// In ascending order; those of equal order as the registry has them.
Packages FindInstalledAfter(std::uint64_t point) {
    Packages packages = TolvexPackages::GetPackageRegistrar().GetRegistry()->GetPackages();
    std::erase_if(packages, [point](const auto& package) { return package->order <= point; });
    std::ranges::stable_sort(packages, {}, [](const auto& package) { return package->order; });
    return packages;
}

TolvexArrays::ArrayOwner MakeFolderColumn(const Packages& packages) {
    std::vector<std::optional<Tolvex::ustring>> folders;
    folders.reserve(packages.size());
    for (const auto& package : packages)
        folders.emplace_back(GetStringFromIRI(package->GetRootFolder()));
    return TolvexArrays::MakeStringColumn(std::move(folders));
}

} // namespace

void GetPathForPackagesInstalledAfter(int outputCount, vxArray* outputs[], int inputCount, vxArray* inputs[]) {
    detail::CheckArgumentCounts(outputCount, inputCount, {2, 1, 1});
    if (!TolvexComponents::ComponentFeature::IsOn())
        TolvexArrays::RaiseHostError(detail::MakePackageManagerIsOff());
    const std::uint64_t point = GetPoint(*inputs[0]);
    const Packages packages = FindInstalledAfter(point);
    outputs[0] = MakeFolderColumn(packages).release();
    if (outputCount < 2)
        return;
    const std::uint64_t newest = packages.empty() ? point : packages.back()->order;
    outputs[1] = TolvexArrays::MakeCharacterVector(Tolvex::FromUtf8(std::to_string(newest))).release();
}

} // namespace PathManagement
