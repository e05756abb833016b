#include "foundation/environment/StorageAccess.h"
#include "foundation/observers/IFileFolderObserverFactory.h"
#include "module/GatewayArguments.h"
#include "search_path/BuiltIns.h"

#include <algorithm>

namespace PathManagement {

namespace {

using Tolvex::ChangeHandleWarning;

// The places of the first three are the setting's values.
constexpr std::array<Tolvex::ustring_view, 4> words{u"always", u"once", u"never", u"status"};
constexpr std::size_t status = 3;

[[noreturn]] void Raise(const char* key) {
    TolvexArrays::RaiseHostError({"TOLVEX:ChangeHandleWarning", key, {}});
}

} // namespace

void FeatureDirChangeHandleWarn(int outputCount, vxArray* outputs[], int inputCount, vxArray* inputs[]) {
    detail::CheckArgumentCounts(outputCount, inputCount, {1, 0, 1});
    if (inputCount < 1)
        Raise("notEnoughInputs");
    const auto storage = TolvexStorageSystem::GetStorageSystemReference();
    auto& observers = Tolvex::GetFileFolderObserverFactory(storage);
    const auto before = static_cast<std::size_t>(observers.getChangeHandleWarning());
    const auto word = detail::FindOption(words, *inputs[0]);
    if (!word)
        Raise("InvalidOption");
    outputs[0] = TolvexArrays::MakeCharacterVector(words[std::min(before, status - 1)]).release();
    if (*word != status)
        observers.setChangeHandleWarning(static_cast<ChangeHandleWarning>(*word));
}

} // namespace PathManagement
