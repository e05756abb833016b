#include "PathAlteration.h"

#include "path_interfaces/PathAlterationExceptions.h"

#include <new>

namespace TolvexPath {

Tolvex::Notification AlterPath(const std::function<void(Tolvex::Notification&)>& change) {
    Tolvex::Notification problems;
    try {
        change(problems);
    } catch (const PathManagement::PathAlterationNotSupportedException&) {
        problems.Add({"TOLVEX:tpath", "PathAlterationNotSupported", {}});
    } catch (const PathManagement::RecursivePathChangeException&) {
        problems.Add({"TOLVEX:tpath", "UnableToModifyTolvexpath", {}});
    } catch (const std::bad_alloc&) {
        problems.Add({"TOLVEX:legacy_two_part", "nomem", {}});
    }
    return problems;
}

} // namespace TolvexPath
