#pragma once

#include "../../storage/test/TemporaryTree.h"
#include "foundation/observers/IFileFolderObserverFactory.h"

#include <gtest/gtest.h>

#include <atomic>
#include <fstream>

namespace Tolvex {

/// Whether every stamp is old enough to prove something, or as old as it is.
enum class StampAge { enough, real };

/// The disk, and a count of the looks at its folders.
class CountingDisk final : public StorageSystem {
public:
    explicit CountingDisk(StampAge age)
        : disk(age == StampAge::enough ? CreateDiskStorageSystem(clock) : GetDiskStorageSystem()) {}

    [[nodiscard]] std::string_view getScheme() const noexcept override { return disk->getScheme(); }
    [[nodiscard]] std::unique_ptr<Folder> openFolder(const AbsoluteIRI& location) const override {
        return disk->openFolder(location);
    }
    [[nodiscard]] ChangeMark takeChangeMark(const AbsoluteIRI& location) const noexcept override {
        ++looks;
        return disk->takeChangeMark(location);
    }
    void takeChangeMarks(std::span<const AbsoluteIRI* const> locations,
                         std::span<ChangeMark> marks) const noexcept override {
        looks += locations.size();
        disk->takeChangeMarks(locations, marks);
    }
    [[nodiscard]] CanonicalAbsoluteIRI canonicalise(const AbsoluteIRI& location) const override {
        return disk->canonicalise(location);
    }
    [[nodiscard]] std::size_t TakeLooks() const { return looks.exchange(0); }

private:
    struct LateClock final : IClock {
        [[nodiscard]] FileTime Now() const override { return GetSystemClock().Now() + std::chrono::hours(1); }
    };
    LateClock clock;
    StorageSystemReference disk;
    mutable std::atomic<std::size_t> looks = 0;
};

/// A folder on the disk with observers of its own factory. Where stamps are old enough, each change carries a later one
/// than all before it, as the marks of the observers take for granted.
class ObservedTree {
public:
    explicit ObservedTree(ObservationOptions options = {}, StampAge age = StampAge::enough)
        : storage(std::make_shared<CountingDisk>(age)),
          factory(CreateFileFolderObserverFactory(storage, std::move(options))) {
        MakeFolder("stamp");
    }

    [[nodiscard]] std::filesystem::path At(const std::string& path) const { return tree.GetRoot() / path; }
    [[nodiscard]] CanonicalAbsoluteIRI Locate(const std::string& path) const {
        return CanonicalAbsoluteIRI::fromCanonical(tree.GetIRI(path));
    }

    [[nodiscard]] std::unique_ptr<IFileFolderObserver>
    Observe(const std::string& path, ObservationLevel level = ObservationLevel::notification) const {
        isMarkTaken = true;
        const auto mark = storage->takeChangeMark(Locate(path));
        static_cast<void>(storage->TakeLooks());
        return factory->createObserver(Locate(path), mark, level);
    }
    /// The same, with the watch armed and the first look done.
    [[nodiscard]] std::unique_ptr<IFileFolderObserver> Watch(const std::string& path) const {
        auto observer = Observe(path);
        EXPECT_FALSE(observer->hasChanged()) << path;
        static_cast<void>(storage->TakeLooks());
        return observer;
    }

    void MakeFolder(const std::string& path) const {
        MoveStampsOn();
        std::filesystem::create_directories(At(path));
    }
    void MakeFile(const std::string& path) const {
        MoveStampsOn();
        std::ofstream(At(path)).put('x');
    }
    void MakeLink(const std::string& path, const std::string& target) const {
        MoveStampsOn();
        std::filesystem::create_symlink(target, At(path));
    }
    void Remove(const std::string& path) const {
        MoveStampsOn();
        std::filesystem::remove_all(At(path));
    }
    void Move(const std::string& from, const std::string& to) const {
        MoveStampsOn();
        std::filesystem::rename(At(from), At(to));
    }

    /// Keeps the folder open, so that the system keeps what was removed.
    void Hold(const std::string& path) const { held.push_back(storage->openFolder(Locate(path))); }

    /// The names of the folders that changed since the last call.
    [[nodiscard]] std::multiset<std::string> TakeChanges() {
        const auto report = factory->getChangesSince(token);
        EXPECT_FALSE(report.askEachObserver);
        token = report.now;
        std::multiset<std::string> names;
        for (const auto& folder : report.changed)
            names.insert(ToUtf8(folder.makePathRelativeTo(tree.GetIRI()).value()));
        return names;
    }

    /// Changes from now on carry a later stamp than the marks of all observers. (The clock for stamps moves in steps.)
    void MoveStampsOn() const {
        if (!isMarkTaken.exchange(false))
            return;
        const auto before = storage->takeChangeMark(Locate("stamp")); // proves nothing where stamps are too young
        while (before.ProvesUnchanged(storage->takeChangeMark(Locate("stamp"))))
            std::filesystem::permissions(At("stamp"), std::filesystem::perms::owner_all);
    }

    TemporaryTree tree;
    std::shared_ptr<CountingDisk> storage;
    std::unique_ptr<IFileFolderObserverFactory> factory;
    ChangeToken token;
    mutable std::vector<std::unique_ptr<Folder>> held;
    mutable std::atomic<bool> isMarkTaken = false;
};

using Names = std::multiset<std::string>;

} // namespace Tolvex
