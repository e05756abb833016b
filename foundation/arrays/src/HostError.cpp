#include "foundation/arrays/HostError.h"

#include <utility>

namespace TolvexArrays {

namespace {

[[noreturn]] void RaiseArgumentError(const char* key) {
    RaiseHostError({"TOLVEX:arguments", key, {}});
}

} // namespace

HostError::~HostError() = default;

void RaiseHostError(Tolvex::MessageIdentifier message) {
    throw HostError(std::move(message));
}

void error_maxlhs() {
    RaiseArgumentError("maxlhs");
}

void error_maxrhs() {
    RaiseArgumentError("maxrhs");
}

void error_minrhs() {
    RaiseArgumentError("minrhs");
}

} // namespace TolvexArrays
