#include "foundation/environment/EngineScopeStore.h"

#include "ScopeContents.h"

#include <utility>

namespace Tolvex {

namespace {

ScopeContents& GetContents() {
    static ScopeContents* const contents = std::make_unique<ScopeContents>().release(); // never destroyed
    return *contents;
}

struct ProcessEnd {
    ~ProcessEnd() { EngineScopeStore::End(); }
};

} // namespace

EngineScopeStore::Identifier EngineScopeStore::getNextID(std::type_index type) {
    return GetContents().GetIdentifier(type);
}

void* EngineScopeStore::Get(Identifier identifier) {
    return GetContents().Get(identifier);
}

void EngineScopeStore::Put(Identifier identifier, std::shared_ptr<void> object) {
    // Made now, so that static objects the kept object refers to, which are older, are destroyed after it.
    static const ProcessEnd processEnd;
    GetContents().Replace(identifier, std::move(object));
}

void EngineScopeStore::End() {
    GetContents().DestroyObjects();
}

} // namespace Tolvex
