#include "foundation/environment/StorageAccess.h"
#include "foundation/observers/IFileFolderObserverFactory.h"
#include "module/GatewayArguments.h"
#include "search_path/BuiltIns.h"

namespace PathManagement {

namespace {

using Tolvex::RemotePathPolicy;

// The places of the first three are the policy's values.
constexpr std::array<Tolvex::ustring_view, 4> words{u"Reload", u"TimecheckDir", u"None", u"Status"};
constexpr std::size_t status = 3;

} // namespace

void FeatureRemotePathPolicy(int outputCount, vxArray* outputs[], int inputCount, vxArray* inputs[]) {
    detail::CheckArgumentCounts(outputCount, inputCount, {1, 1, 1});
    const auto storage = TolvexStorageSystem::GetStorageSystemReference();
    auto& observers = Tolvex::GetFileFolderObserverFactory(storage);
    const auto before = static_cast<std::size_t>(observers.getRemotePathPolicy());
    const auto word = detail::FindOption(words, *inputs[0]);
    if (!word)
        TolvexArrays::RaiseHostError({"TOLVEX:RemotePolicy", "UnknownPolicy", {}});
    if (before < status)
        outputs[0] = TolvexArrays::MakeCharacterVector(words[before]).release();
    if (*word != status)
        observers.setRemotePathPolicy(static_cast<RemotePathPolicy>(*word));
}

} // namespace PathManagement
