#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <mutex>
#include <typeindex>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Tolvex {

/// The objects that live as long as one scope. Whoever has one never destroys it, so that asking is safe as long as
/// there is a process. No lock is held while an object is destroyed. Safe from any thread.
class ScopeContents {
public:
    using Identifier = std::size_t;

    Identifier GetIdentifier(std::type_index type) {
        const std::lock_guard lock(mutex);
        return identifiers.try_emplace(type, identifiers.size()).first->second;
    }

    void* Get(Identifier identifier) {
        const std::lock_guard lock(mutex);
        const auto found = Find(identifier);
        return found == objects.end() ? nullptr : found->second.get();
    }

    /// Keeps the first of several; returns the one that is kept.
    void* Put(Identifier identifier, std::shared_ptr<void> object) {
        const std::lock_guard lock(mutex);
        if (const auto found = Find(identifier); found != objects.end())
            return found->second.get();
        return objects.emplace_back(identifier, std::move(object)).second.get();
    }

    /// Keeps the last of several, which counts as put in now.
    void Replace(Identifier identifier, std::shared_ptr<void> object) {
        std::shared_ptr<void> replaced;
        const std::lock_guard lock(mutex);
        objects.emplace_back(identifier, std::move(object));
        if (const auto found = Find(identifier); found + 1 != objects.end()) {
            replaced = std::move(found->second);
            objects.erase(found);
        }
    }

    /// Destroys all objects, latest first; also those put in meanwhile.
    void DestroyObjects() {
        while (const auto last = TakeLast()) {
        }
    }

private:
    using Entry = std::pair<Identifier, std::shared_ptr<void>>;

    [[nodiscard]] std::vector<Entry>::iterator Find(Identifier identifier) {
        return std::find_if(objects.begin(), objects.end(),
                            [identifier](const Entry& entry) { return entry.first == identifier; });
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
    std::unordered_map<std::type_index, Identifier> identifiers; // guarded by `mutex`
    std::vector<Entry> objects;                                  // guarded by `mutex`; a handful
};

} // namespace Tolvex
