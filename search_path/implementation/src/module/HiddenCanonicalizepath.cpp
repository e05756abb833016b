#include "foundation/environment/WorkingFolder.h"
#include "module/GatewayArguments.h"
#include "path_utilities/PathText.h"
#include "search_path/BuiltIns.h"

namespace PathManagement {

namespace {

using TolvexArrays::ArrayKind;

TolvexArrays::ArrayOwner MakeTextOfKind(ArrayKind kind, Tolvex::ustring text) {
    return kind == ArrayKind::character ? TolvexArrays::MakeCharacterVector(text)
                                        : TolvexArrays::MakeStringScalar(std::move(text));
}

} // namespace

void HiddenCanonicalizepath(int outputCount, vxArray* outputs[], int inputCount, vxArray* inputs[]) {
    detail::CheckArgumentCounts(outputCount, inputCount, {1, 1, 1});
    const auto path = TolvexArrays::GetScalarText(*inputs[0]);
    if (!path)
        TolvexArrays::RaiseHostError({"TOLVEX:string", "MustBeStringScalarOrCharacterVector", {}});
    // An absolute path has an answer even where the working folder is gone.
    const auto base = path->starts_with(u'/') ? Tolvex::AbsoluteIRI("file", u"/")
                                              : Tolvex::AbsoluteIRI(Tolvex::GetCurrentWorkingFolder().get());
    const auto location = CanonicalizeRelativePathAgainstCWD(*path, base);
    outputs[0] = MakeTextOfKind(TolvexArrays::GetKind(*inputs[0]), GetStringFromIRI(location)).release();
}

} // namespace PathManagement
