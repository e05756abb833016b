#pragma once

namespace PathManagement {

class IMainSearchPathManager;

/// Published at once, first of all, when a manager is destroyed: it is still whole, and takes no change any more.
class PathManagerWillBeDestroyedEvent {
public:
    explicit PathManagerWillBeDestroyedEvent(const IMainSearchPathManager& manager) noexcept : manager(&manager) {}

    [[nodiscard]] const IMainSearchPathManager& GetManager() const noexcept { return *manager; }

private:
    const IMainSearchPathManager* manager;
};

} // namespace PathManagement
