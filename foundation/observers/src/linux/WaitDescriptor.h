#pragma once

#include <optional>
#include <utility>

namespace Tolvex {

/// One descriptor that is ready to be read when a queue of watches is, or once when storage was attached or detached.
class WaitDescriptor {
public:
    /// `queueNumber` stays the caller's and open. Empty when the system gives no descriptor.
    [[nodiscard]] static std::optional<WaitDescriptor> Open(int queueNumber) noexcept;

    WaitDescriptor(WaitDescriptor&& other) noexcept
        : number(std::exchange(other.number, -1)), mountTable(std::exchange(other.mountTable, -1)) {}
    WaitDescriptor& operator=(WaitDescriptor&& other) noexcept {
        std::swap(number, other.number);
        std::swap(mountTable, other.mountTable);
        return *this;
    }
    ~WaitDescriptor();

    [[nodiscard]] int GetNumber() const noexcept { return number; }

private:
    WaitDescriptor(int number, int mountTable) noexcept : number(number), mountTable(mountTable) {}

    int number;
    int mountTable; // of its own: asking whether the table has changed takes the answer away from whoever asks next
};

} // namespace Tolvex
