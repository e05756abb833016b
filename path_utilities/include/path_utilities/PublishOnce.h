#pragma once

#include <atomic>
#include <memory>

namespace PathManagement {

/// A value that is made when it is first asked for and never changes again. Takes no lock: threads that ask for it at
/// the same time may each make one, and all get the one that was first put in place.
template <class T>
class PublishOnce {
public:
    PublishOnce() noexcept = default;
    PublishOnce(const PublishOnce&) = delete;
    PublishOnce& operator=(const PublishOnce&) = delete;
    ~PublishOnce() { delete value.load(std::memory_order_acquire); }

    /// Valid as long as this object. What `make` throws passes through, and the next caller makes it.
    template <class Make>
    const T& Get(const Make& make) const {
        if (const T* present = value.load(std::memory_order_acquire))
            return *present;
        auto made = std::make_unique<const T>(make());
        const T* first = nullptr;
        if (value.compare_exchange_strong(first, made.get(), std::memory_order_acq_rel, std::memory_order_acquire))
            return *made.release();
        return *first;
    }

private:
    mutable std::atomic<const T*> value = nullptr;
};

} // namespace PathManagement
