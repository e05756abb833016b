#pragma once

#include "foundation/observers/IFileFolderObserverFactory.h"

#include <boost/intrusive/slist.hpp>
#include <boost/smart_ptr/intrusive_ptr.hpp>

#include <atomic>
#include <cstdint>

namespace Tolvex {

class ObserverRegistry;
struct ObservedFolder;

/// What one owner knows of a folder, and whether that still holds. Small: there is one for each folder of the path.
class FileFolderObserver final : public IFileFolderObserver, public boost::intrusive::slist_base_hook<> {
public:
    FileFolderObserver(boost::intrusive_ptr<ObserverRegistry> registry, const CanonicalAbsoluteIRI& folder,
                       const ChangeMark& mark, ObservationLevel level);
    FileFolderObserver(const FileFolderObserver&) = delete;
    FileFolderObserver& operator=(const FileFolderObserver&) = delete;
    ~FileFolderObserver() override;

    [[nodiscard]] bool hasChanged() const noexcept override;
    [[nodiscard]] bool observesChildFoldersToo() const noexcept override { return false; }

    // For the registry, under its lock. Owners read the level and the answer without it.

    [[nodiscard]] ObservationLevel GetLevel() const noexcept { return level.load(std::memory_order_relaxed); }
    void SetLevel(ObservationLevel newLevel) noexcept { level.store(newLevel, std::memory_order_relaxed); }

    [[nodiscard]] bool IsChanged() const noexcept { return changed.load(std::memory_order_relaxed); }
    void SetChanged() noexcept { changed.store(true, std::memory_order_relaxed); }

    /// True when it wants to know of changes and knows of none.
    [[nodiscard]] bool IsCurious() const noexcept { return GetLevel() != ObservationLevel::none && !IsChanged(); }
    [[nodiscard]] bool Refutes(const ChangeMark& now) const noexcept { return !mark.ProvesUnchanged(now); }
    /// Takes over a mark that it does not refute where its own is only a time and would not tell the folder from
    /// another.
    void Adopt(const ChangeMark& now) noexcept {
        if (mark.isOfTimeOnly && now.settled)
            mark = now;
    }

    /// Looks that began before it was made say nothing to it.
    [[nodiscard]] std::uint64_t GetNumber() const noexcept { return number; }
    void SetNumber(std::uint64_t newNumber) noexcept { number = newNumber; }

private:
    const boost::intrusive_ptr<ObserverRegistry> registry;
    ChangeMark mark;
    std::uint64_t number = 0;
    std::atomic<ObservationLevel> level;
    std::atomic<bool> changed = false;                 // never goes back
    const boost::intrusive_ptr<ObservedFolder> folder; // last: once it is there, others know this observer
};

} // namespace Tolvex
