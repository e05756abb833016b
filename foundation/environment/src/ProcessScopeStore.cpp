#include "foundation/environment/ProcessScopeStore.h"

#include <algorithm>
#include <mutex>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Tolvex {

namespace {

/// All that the store knows. Never destroyed, so that asking is safe as long as there is a process.
class Contents {
public:
    ProcessScopeStore::Identifier GetIdentifier(std::type_index type) {
        const std::lock_guard lock(mutex);
        return identifiers.try_emplace(type, identifiers.size()).first->second;
    }

    void* Get(ProcessScopeStore::Identifier identifier) {
        const std::lock_guard lock(mutex);
        return Find(identifier);
    }

    void* Put(ProcessScopeStore::Identifier identifier, std::shared_ptr<void> object) {
        const std::lock_guard lock(mutex);
        if (void* const known = Find(identifier); known != nullptr)
            return known;
        return objects.emplace_back(identifier, std::move(object)).second.get();
    }

    /// Destroys all objects, latest first; also those put in meanwhile. No lock is held while a destructor runs.
    void DestroyObjects() {
        while (const auto last = TakeLast()) {
        }
    }

private:
    using Entry = std::pair<ProcessScopeStore::Identifier, std::shared_ptr<void>>;

    [[nodiscard]] void* Find(ProcessScopeStore::Identifier identifier) const {
        const auto found = std::find_if(objects.begin(), objects.end(),
                                        [identifier](const Entry& entry) { return entry.first == identifier; });
        return found == objects.end() ? nullptr : found->second.get();
    }

    [[nodiscard]] std::shared_ptr<void> TakeLast() {
        const std::lock_guard lock(mutex);
        if (objects.empty())
            return nullptr;
        auto last = std::move(objects.back().second);
        objects.pop_back();
        return last;
    }

    std::mutex mutex;
    std::unordered_map<std::type_index, ProcessScopeStore::Identifier> identifiers; // guarded by `mutex`
    std::vector<Entry> objects;                                                     // guarded by `mutex`; a handful
};

Contents& GetContents() {
    static Contents* const contents = std::make_unique<Contents>().release();
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
