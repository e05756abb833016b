#pragma once

#include "foundation/storage/StorageSystem.h"

#include <initializer_list>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace Tolvex {

/// A clock that stands still until it is told to move.
class KX_EXPORT ManualClock : public IClock {
public:
    ManualClock();
    ~ManualClock() override;
    [[nodiscard]] FileTime Now() const override;
    void Advance(std::chrono::nanoseconds by);

private:
    mutable std::mutex mutex;
    FileTime now;
};

/// A storage system in memory, scheme "memory": for hosts that bring their own folders and for tests. All paths are
/// UTF-8 texts that start with "/". Safe from any thread.
///
/// Changing the tree stamps what a disk would stamp, with `GetClock()`'s time; a stamp equal to the time of looking is
/// not settled (see ChangeMark).
class KX_EXPORT MemoryStorage : public StorageSystem {
public:
    enum class CaseRule { sensitive, insensitive };

    /// Builds the tree from a list of paths: "/a/b.kx" is a file, "/a/c/" a folder, "/a/d -> /e" a link; folders above
    /// are made as needed. The clock then moves on by one second, so that the tree as built is settled.
    explicit MemoryStorage(std::initializer_list<std::string_view> paths = {}, CaseRule caseRule = CaseRule::sensitive);
    explicit MemoryStorage(const std::vector<std::string>& paths, CaseRule caseRule = CaseRule::sensitive);
    ~MemoryStorage() override;

    [[nodiscard]] std::string_view getScheme() const noexcept override;
    [[nodiscard]] std::unique_ptr<Folder> openFolder(const AbsoluteIRI& location) const override;
    [[nodiscard]] ChangeMark takeChangeMark(const AbsoluteIRI& location) const noexcept override;
    [[nodiscard]] CanonicalAbsoluteIRI canonicalise(const AbsoluteIRI& location) const override;

    /// The IRI of a path of this tree.
    [[nodiscard]] static AbsoluteIRI GetIRI(std::string_view path);

    ManualClock& GetClock() noexcept;

    // Changes. Each throws std::invalid_argument when the tree does not allow it.
    /// Adds a file, folder or link, written as in the constructor.
    void Add(std::string_view path);
    /// Removes a file, a link or a folder with all it holds.
    void Remove(std::string_view path);
    /// Moves a file, link or folder to a new name; the folders it leaves and enters are stamped.
    void Rename(std::string_view from, std::string_view to);

    // Faults, by path; each stays until cleared by ClearFaults.
    /// Opening works, listing throws `accessFailure`.
    void FailListing(std::string_view path);
    /// The folder is listed by its parent but is gone when it is opened.
    void VanishWhenOpened(std::string_view path);
    /// Opening throws `permissionDenied`.
    void DenyAccess(std::string_view path);
    /// Listing blocks until ReleaseListings is called. (Nothing sleeps.)
    void HoldListing(std::string_view path);
    void ReleaseListings();
    void ClearFaults();

    /// The canonical paths of all folders that were listed since the log was last cleared, in order.
    [[nodiscard]] std::vector<std::string> GetListings() const;
    void ClearListings();
    /// How often a change mark was taken without opening, since the log was last cleared.
    [[nodiscard]] std::size_t GetMarkCount() const;

private:
    struct Tree;
    std::shared_ptr<Tree> tree;
};

} // namespace Tolvex
