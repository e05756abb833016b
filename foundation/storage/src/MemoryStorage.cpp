#include "foundation/storage/MemoryStorage.h"

#include "MemoryTree.h"
#include "PathText.h"

#include <atomic>
#include <condition_variable>
#include <set>

namespace Tolvex {
namespace {

constexpr std::string_view memoryScheme = "memory";

std::uint64_t MakeDeviceNumber() {
    static std::atomic<std::uint64_t> last = 0;
    return ++last;
}

} // namespace

ManualClock::ManualClock() : now(std::chrono::sys_days(std::chrono::year(2000) / 1 / 1)) {}

ManualClock::~ManualClock() = default;

FileTime ManualClock::Now() const {
    const std::scoped_lock lock(mutex);
    return now;
}

void ManualClock::Advance(std::chrono::nanoseconds by) {
    const std::scoped_lock lock(mutex);
    now += by;
}

/// What the storage and its open folders share.
struct MemoryStorage::Tree : std::enable_shared_from_this<Tree> {
    enum class Fault { failListing, vanish, deny, hold };
    class OpenFolder;

    explicit Tree(CaseRule caseRule) : nodes(caseRule == CaseRule::insensitive, clock.Now()) {}

    void Add(std::string_view path);
    void SetFault(Fault fault, std::string_view path);
    // The following need `mutex` to be held.
    [[nodiscard]] bool HasFault(Fault fault, ustring_view canonicalPath) const;
    [[nodiscard]] std::optional<StorageFailure> FindObstacle(const MemoryTree::Found& found) const;
    [[nodiscard]] ChangeMark MakeMark(const MemoryTree::Node& node) const;
    [[nodiscard]] std::unique_ptr<Folder> Open(const MemoryTree::Found& found, const AbsoluteIRI& spelled);

    const std::uint64_t device = MakeDeviceNumber();
    ManualClock clock;
    mutable std::mutex mutex; // guards all below
    std::condition_variable released;
    MemoryTree nodes;
    std::set<std::pair<Fault, ustring>> faults;
    std::vector<std::string> listings;
    std::size_t markCount = 0;
};

class MemoryStorage::Tree::OpenFolder final : public Folder {
public:
    /// REQUIRES: the tree's mutex is held.
    OpenFolder(std::shared_ptr<Tree> tree, MemoryTree::NodeReference node)
        : tree(std::move(tree)), node(std::move(node)), mark(this->tree->MakeMark(*this->node)),
          comparator(this->tree->nodes.IgnoresCase()),
          location(CanonicalAbsoluteIRI::fromCanonical(
              AbsoluteIRI(memoryScheme, this->tree->nodes.GetPath(*this->node).value()))) {}

    [[nodiscard]] CanonicalAbsoluteIRI getCanonicalLocation() const override { return location; }
    [[nodiscard]] const PathComparator& getPathComparator() const override { return comparator; }
    [[nodiscard]] const ChangeMark& getChangeMark() const override { return mark; }

    void list(FolderListing& listing) const override {
        std::unique_lock lock(tree->mutex);
        listing.Clear();
        const auto path = location.getPath();
        tree->listings.push_back(ToUtf8(path));
        tree->released.wait(lock, [&] { return !tree->HasFault(Fault::hold, path); });
        if (tree->HasFault(Fault::failListing, path))
            throw StorageError(StorageFailure::accessFailure, location, u"Input/output error");
        if (!tree->nodes.GetPath(*node))
            throw StorageError(StorageFailure::missing, location);
        tree->nodes.List(node, listing);
    }

    [[nodiscard]] std::unique_ptr<Folder> openChild(ustring_view name) const override {
        if (!IsChildName(name))
            throw StorageError(StorageFailure::invalidLocation, location);
        const std::scoped_lock lock(tree->mutex);
        return tree->Open(tree->nodes.Find(name, node), location.getChild(name));
    }

private:
    std::shared_ptr<Tree> tree;
    MemoryTree::NodeReference node;
    ChangeMark mark;
    PathComparator comparator;
    CanonicalAbsoluteIRI location; // when it was opened
};

void MemoryStorage::Tree::Add(std::string_view path) {
    constexpr std::string_view arrow = " -> ";
    const std::scoped_lock lock(mutex);
    const auto now = clock.Now();
    if (const auto at = path.find(arrow); at != std::string_view::npos)
        nodes.AddLink(FromUtf8(path.substr(0, at)), FromUtf8(path.substr(at + arrow.size())), now);
    else if (path.ends_with('/'))
        nodes.AddFolder(FromUtf8(path), now);
    else
        nodes.AddFile(FromUtf8(path), now);
}

void MemoryStorage::Tree::SetFault(Fault fault, std::string_view path) {
    const std::scoped_lock lock(mutex);
    faults.emplace(fault, nodes.MakeKey(CleanPath(FromUtf8(path))));
}

bool MemoryStorage::Tree::HasFault(Fault fault, ustring_view canonicalPath) const {
    return faults.contains({fault, nodes.MakeKey(canonicalPath)});
}

/// Why the folder cannot be opened; nothing when it can.
std::optional<StorageFailure> MemoryStorage::Tree::FindObstacle(const MemoryTree::Found& found) const {
    if (!found.node)
        return found.failure;
    if (found.node->kind != MemoryTree::Kind::folder)
        return StorageFailure::notAFolder;
    const auto path = nodes.GetPath(*found.node);
    if (!path || HasFault(Fault::vanish, *path))
        return StorageFailure::missing;
    if (HasFault(Fault::deny, *path))
        return StorageFailure::permissionDenied;
    return std::nullopt;
}

ChangeMark MemoryStorage::Tree::MakeMark(const MemoryTree::Node& node) const {
    ChangeMark mark{device, node.inode, node.changed};
    mark.settled = node.changed < clock.Now();
    mark.present = true;
    return mark;
}

std::unique_ptr<Folder> MemoryStorage::Tree::Open(const MemoryTree::Found& found, const AbsoluteIRI& spelled) {
    if (const auto obstacle = FindObstacle(found))
        throw StorageError(*obstacle, spelled);
    return std::make_unique<OpenFolder>(shared_from_this(), found.node);
}

MemoryStorage::MemoryStorage(std::initializer_list<std::string_view> paths, CaseRule caseRule)
    : MemoryStorage(std::vector<std::string>(paths.begin(), paths.end()), caseRule) {}

MemoryStorage::MemoryStorage(const std::vector<std::string>& paths, CaseRule caseRule)
    : tree(std::make_shared<Tree>(caseRule)) {
    for (const auto& path : paths)
        tree->Add(path);
    tree->clock.Advance(std::chrono::seconds(1));
}

MemoryStorage::~MemoryStorage() = default;

std::string_view MemoryStorage::getScheme() const noexcept {
    return memoryScheme;
}

std::unique_ptr<Folder> MemoryStorage::openFolder(const AbsoluteIRI& location) const {
    if (location.getScheme() != memoryScheme)
        throw StorageError(StorageFailure::invalidLocation, location);
    const std::scoped_lock lock(tree->mutex);
    return tree->Open(tree->nodes.Find(location.getPath()), location);
}

ChangeMark MemoryStorage::takeChangeMark(const AbsoluteIRI& location) const noexcept {
    try {
        const std::scoped_lock lock(tree->mutex);
        ++tree->markCount;
        const auto found = tree->nodes.Find(location.getPath());
        if (location.getScheme() == memoryScheme && !tree->FindObstacle(found))
            return tree->MakeMark(*found.node);
    } catch (const std::exception&) { // no memory left: it could not have been opened either
    }
    return {};
}

CanonicalAbsoluteIRI MemoryStorage::canonicalise(const AbsoluteIRI& location) const {
    if (location.isEmpty())
        return {};
    if (location.getScheme() != memoryScheme)
        return CanonicalAbsoluteIRI(location, {});
    const std::scoped_lock lock(tree->mutex);
    return CanonicalAbsoluteIRI::fromCanonical(AbsoluteIRI(memoryScheme, tree->nodes.Canonicalise(location.getPath())));
}

AbsoluteIRI MemoryStorage::GetIRI(std::string_view path) {
    return AbsoluteIRI(memoryScheme, FromUtf8(path));
}

ManualClock& MemoryStorage::GetClock() noexcept {
    return tree->clock;
}

void MemoryStorage::Add(std::string_view path) {
    tree->Add(path);
}

void MemoryStorage::Remove(std::string_view path) {
    const std::scoped_lock lock(tree->mutex);
    tree->nodes.Remove(FromUtf8(path), tree->clock.Now());
}

void MemoryStorage::Rename(std::string_view from, std::string_view to) {
    const std::scoped_lock lock(tree->mutex);
    tree->nodes.Rename(FromUtf8(from), FromUtf8(to), tree->clock.Now());
}

void MemoryStorage::FailListing(std::string_view path) {
    tree->SetFault(Tree::Fault::failListing, path);
}

void MemoryStorage::VanishWhenOpened(std::string_view path) {
    tree->SetFault(Tree::Fault::vanish, path);
}

void MemoryStorage::DenyAccess(std::string_view path) {
    tree->SetFault(Tree::Fault::deny, path);
}

void MemoryStorage::HoldListing(std::string_view path) {
    tree->SetFault(Tree::Fault::hold, path);
}

void MemoryStorage::ReleaseListings() {
    const std::scoped_lock lock(tree->mutex);
    std::erase_if(tree->faults, [](const auto& fault) { return fault.first == Tree::Fault::hold; });
    tree->released.notify_all();
}

void MemoryStorage::ClearFaults() {
    const std::scoped_lock lock(tree->mutex);
    tree->faults.clear();
    tree->released.notify_all();
}

std::vector<std::string> MemoryStorage::GetListings() const {
    const std::scoped_lock lock(tree->mutex);
    return tree->listings;
}

void MemoryStorage::ClearListings() {
    const std::scoped_lock lock(tree->mutex);
    tree->listings.clear();
    tree->markCount = 0;
}

std::size_t MemoryStorage::GetMarkCount() const {
    const std::scoped_lock lock(tree->mutex);
    return tree->markCount;
}

} // namespace Tolvex
