#include "foundation/environment/ProcessScopeStore.h"

#include "ScopeContents.h"

#include <utility>

namespace Tolvex {

namespace {

ScopeContents& GetContents() {
    static ScopeContents* const contents = std::make_unique<ScopeContents>().release(); // never destroyed
    return *contents;
}

struct ProcessEnd {
    ~ProcessEnd() { GetContents().DestroyObjects(); }
};

} // namespace

ProcessScopeStore::Identifier ProcessScopeStore::getNextID(std::type_index type) {
    return GetContents().GetIdentifier(type);
}

void* ProcessScopeStore::Get(Identifier identifier) {
    return GetContents().Get(identifier);
}

void* ProcessScopeStore::Put(Identifier identifier, std::shared_ptr<void> object) {
    // Made now, so that static objects the kept object refers to, which are older, are destroyed after it.
    static const ProcessEnd processEnd;
    return GetContents().Put(identifier, std::move(object));
}

} // namespace Tolvex
