#include "foundation/events/ScopedConnection.h"

#include <utility>

namespace Tolvex {

ScopedConnection::ScopedConnection() noexcept = default;

ScopedConnection::ScopedConnection(std::shared_ptr<ISubscription> held) noexcept : subscription(std::move(held)) {}

ScopedConnection::ScopedConnection(ScopedConnection&& other) noexcept = default;

ScopedConnection& ScopedConnection::operator=(ScopedConnection&& other) noexcept {
    if (this != &other) {
        Disconnect();
        subscription = std::move(other.subscription);
    }
    return *this;
}

ScopedConnection::~ScopedConnection() {
    Disconnect();
}

void ScopedConnection::Disconnect() noexcept {
    // Empty before it is cut: a handler that ends by destroying its own connection finds nothing left to do.
    if (const auto cut = std::exchange(subscription, nullptr); cut != nullptr)
        cut->Cut();
}

} // namespace Tolvex
