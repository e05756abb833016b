#include "TemporaryTree.h"
#include "foundation/storage/MemoryStorage.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <fstream>
#include <stdexcept>

namespace Tolvex {
namespace {

namespace fs = std::filesystem;

/// One thing to be put into both trees.
struct Wish {
    enum class Kind { file, folder, link } kind;
    std::vector<std::string> path;
    bool absoluteTarget;
    std::vector<std::string> target;
};

std::string Join(const std::vector<std::string>& names) {
    std::string path;
    for (const auto& name : names)
        path += "/" + name;
    return path;
}

rc::Gen<std::vector<std::string>> GenNames(const std::vector<std::string>& names, std::size_t most) {
    return rc::gen::mapcat(rc::gen::inRange<std::size_t>(1, most + 1), [names](std::size_t count) {
        return rc::gen::container<std::vector<std::string>>(count, rc::gen::elementOf(names));
    });
}

rc::Gen<Wish> GenWish() {
    const std::vector<std::string> names{"a", "b", "c"};
    return rc::gen::construct<Wish>(
        rc::gen::element(Wish::Kind::file, Wish::Kind::folder, Wish::Kind::link, Wish::Kind::link), GenNames(names, 3),
        rc::gen::arbitrary<bool>(), GenNames({"a", "b", "c", "..", "."}, 3));
}

/// The same tree, in memory and on the disk, below the same path, which is so deep that no ".." of a test leaves it.
struct Twins {
    explicit Twins(const TemporaryTree& tree) : base(tree.GetRoot() / "1/2/3/4/5/6/7/8/9/10/11/12/13/14/15/16") {
        fs::create_directories(base);
        fs::path next;
        for (fs::path above = base; above != tree.GetRoot().parent_path(); above = above.parent_path()) {
            RemoveAllBut(next, above);
            next = above;
        }
    }

    /// What an earlier trial left; its links may have led it above the base.
    static void RemoveAllBut(const fs::path& kept, const fs::path& folder) {
        for (const auto& entry : fs::directory_iterator(folder))
            if (entry.path() != kept)
                fs::remove_all(entry.path());
    }

    void Put(const Wish& wish) {
        const auto path = base + Join(wish.path);
        const auto target = wish.absoluteTarget ? base + Join(wish.target) : Join(wish.target).substr(1);
        try {
            memory.Add(path + (wish.kind == Wish::Kind::folder ? "/" : "") +
                       (wish.kind == Wish::Kind::link ? " -> " + target : ""));
        } catch (const std::invalid_argument&) {
            return;
        }
        fs::create_directories(wish.kind == Wish::Kind::folder ? fs::path(path) : fs::path(path).parent_path());
        if (wish.kind == Wish::Kind::file)
            std::ofstream(path).flush();
        if (wish.kind == Wish::Kind::link)
            fs::create_symlink(target, path);
    }

    std::string base;
    MemoryStorage memory{{base + "/"}};
};

/// All that can be asked of a path, as text.
std::string Ask(const StorageSystem& storage, const AbsoluteIRI& location) {
    const auto mark = storage.takeChangeMark(location);
    auto answer = ToUtf8(storage.canonicalise(location).getPath()) + (mark.present ? " present\n" : " absent\n");
    try {
        const auto folder = storage.openFolder(location);
        answer += ToUtf8(folder->getCanonicalLocation().getPath()) + "\n";
        for (const auto& name : ListNames(*folder)) {
            answer += name + "\n";
            if (name.ends_with('/')) {
                const auto child = folder->openChild(FromUtf8(name.substr(0, name.size() - 1)));
                answer += ToUtf8(child->getCanonicalLocation().getPath()) + "\n";
                answer += child->getChangeMark().inode == mark.inode ? "the same\n" : "";
            }
        }
    } catch (const StorageError& error) {
        answer += "failure " + std::to_string(static_cast<int>(error.GetFailure()));
    }
    return answer;
}

RC_GTEST_PROP(MemoryAndDisk, GiveTheSameAnswers, ()) {
    static const TemporaryTree tree; // one for all trials: removing deep folders is slow
    Twins twins(tree);
    for (const auto& wish : *rc::gen::container<std::vector<Wish>>(GenWish()))
        twins.Put(wish);
    for (int i = 0; i < 5; ++i) {
        const auto path = FromUtf8(twins.base + Join(*GenNames({"a", "b", "c", "..", "."}, 5)));
        RC_ASSERT(Ask(twins.memory, AbsoluteIRI("memory", path)) ==
                  Ask(*GetDiskStorageSystem(), AbsoluteIRI("file", path)));
    }
}

} // namespace
} // namespace Tolvex
