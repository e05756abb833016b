#include "foundation/storage/PathComparator.h"

#include "foundation/diagnostics/Terminate.h"
#include "foundation/text/CaseFolding.h"

namespace Tolvex {

bool PathComparator::IsSameInOtherCase(ustring_view a, ustring_view b, CaseModifier modifier) const noexcept {
    switch (modifier) {
    case CaseModifier::fileSystemRule:
        return fileSystemIgnoresCase && EqualIgnoringCase(a, b);
    case CaseModifier::exact:
        return false;
    case CaseModifier::ignoreCase:
        return EqualIgnoringCase(a, b);
    }
    DiagnosticTerminate("All case modifiers should have been handled.");
}

} // namespace Tolvex
