#pragma once

#include "ObserverRegistry.h"

#include <vector>

namespace Tolvex {

/// One look at some folders and what follows from it. The registry's lock is held but for the looks themselves, which
/// may take long; what happens meanwhile stays for the next round.
class ObserverRegistry::LookRound {
public:
    /// REQUIRES: `lock` is held, and the queue was drained.
    LookRound(ObserverRegistry& registry, Lock& lock);

    /// Arms the folder's watch, where it should have one, before it is looked at. Frozen observers want no look.
    void Include(ObservedFolder& folder, FrozenInclusion frozen = FrozenInclusion::excluded);
    void Run();

private:
    struct Look {
        boost::intrusive_ptr<ObservedFolder> folder;
        std::uint32_t suspicions; // that were known before its watch was armed
        FrozenInclusion frozen;

        /// Whether it is of use to the observer.
        [[nodiscard]] bool Concerns(const FileFolderObserver& observer) const noexcept;
    };

    [[nodiscard]] bool IsToBeLookedAt(ObservedFolder& folder, FrozenInclusion frozen) const;
    [[nodiscard]] std::string DescribeShortage();
    [[nodiscard]] std::vector<ChangeMark> TakeMarks() const;
    void Apply(const Look& look, const ChangeMark& now) const;

    ObserverRegistry& registry;
    Lock& lock;
    const std::uint64_t lastNumber; // of the observers that the looks speak to
    std::vector<Look> looks;
};

} // namespace Tolvex
