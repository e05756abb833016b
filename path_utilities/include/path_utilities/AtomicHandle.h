#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <utility>

namespace PathManagement {

/// A shared handle that one thread replaces while others take copies of it. Nobody takes a lock or waits: a reader
/// makes two changes to one word, whatever writers do meanwhile.
///
/// The word holds the address of the present handle and, above it, how many readers are just copying it. Who replaces
/// the handle hands that number over to the old one, which is deleted by the last of them: "split reference counts"
/// (A. Williams, "C++ Concurrency in Action", 2nd edition, 2019, section 7.2.4).
template <class T>
class AtomicHandle {
    static_assert(sizeof(void*) == sizeof(std::uint64_t), "the word has room for a counter above 48 bits of address");

public:
    explicit AtomicHandle(std::shared_ptr<T> handle) : word(ToWord(new Holder{std::move(handle)})) {}
    AtomicHandle(const AtomicHandle&) = delete;
    AtomicHandle& operator=(const AtomicHandle&) = delete;

    /// Nobody may be reading any more.
    ~AtomicHandle() { delete ToHolder(word.load(std::memory_order_acquire)); }

    [[nodiscard]] std::shared_ptr<T> Load() const {
        const std::uint64_t taken = word.fetch_add(oneReader, std::memory_order_acquire);
        Holder* const holder = ToHolder(taken);
        std::shared_ptr<T> copy = holder->handle;
        Leave(holder, taken + oneReader);
        return copy;
    }

    /// Gives the handle that was replaced. Throws std::bad_alloc, and changes nothing.
    std::shared_ptr<T> Exchange(std::shared_ptr<T> handle) {
        const std::uint64_t replaced = word.exchange(ToWord(new Holder{std::move(handle)}), std::memory_order_acq_rel);
        Holder* const holder = ToHolder(replaced);
        std::shared_ptr<T> old = holder->handle;
        const auto readers = static_cast<std::int64_t>(replaced >> addressBits);
        if (holder->readersLeft.fetch_add(readers, std::memory_order_acq_rel) + readers == 0)
            delete holder;
        return old;
    }

private:
    struct Holder {
        std::shared_ptr<T> handle;
        /// Once replaced: the readers that were counted in the word and have not left yet. Until that number arrives,
        /// those who leave early make it negative.
        std::atomic<std::int64_t> readersLeft = 0;
    };

    static constexpr unsigned addressBits = 48;
    static constexpr std::uint64_t oneReader = std::uint64_t{1} << addressBits;

    [[nodiscard]] static std::uint64_t ToWord(Holder* holder) noexcept {
        return reinterpret_cast<std::uintptr_t>(holder);
    }
    [[nodiscard]] static Holder* ToHolder(std::uint64_t word) noexcept {
        return reinterpret_cast<Holder*>(word & (oneReader - 1));
    }

    /// Takes this reader out of the word, or, when the handle was replaced meanwhile, out of the holder's number.
    void Leave(Holder* holder, std::uint64_t seen) const noexcept {
        while (ToHolder(seen) == holder)
            if (word.compare_exchange_weak(seen, seen - oneReader, std::memory_order_release,
                                           std::memory_order_relaxed))
                return;
        if (holder->readersLeft.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete holder;
    }

    mutable std::atomic<std::uint64_t> word;
};

} // namespace PathManagement
