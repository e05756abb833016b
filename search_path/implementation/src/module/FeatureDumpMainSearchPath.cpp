#include "module/GatewayArguments.h"
#include "module/PathDump.h"
#include "module/PresentManager.h"
#include "search_path/Accessors.h"
#include "search_path/BuiltIns.h"

#include <sstream>

namespace PathManagement {

void FeatureDumpMainSearchPath(int outputCount, vxArray* outputs[], int inputCount, vxArray* /*inputs*/[]) {
    detail::CheckArgumentCounts(outputCount, inputCount, {1, 0, 0});
    std::ostringstream dump;
    const IPathEntryFactory& factory = GetPathEntryFactory();
    if (const auto* const manager = PresentManager::Get())
        detail::DumpPath(dump, *manager, factory);
    else
        dump << "There is no search path manager in this process.\n";
    detail::DumpSurroundings(dump, factory);
    outputs[0] = TolvexArrays::MakeCharacterVector(Tolvex::FromUtf8(dump.str())).release();
}

} // namespace PathManagement
