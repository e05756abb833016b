#include "module/PresentManager.h"

#include "path_interfaces/events/PathManagerWillBeDestroyedEvent.h"

namespace PathManagement {

namespace {

struct State {
    const IMainSearchPathManager* manager = nullptr;
    Tolvex::ScopedConnection destruction;
};

State& GetState() {
    static State state;
    return state;
}

} // namespace

const IMainSearchPathManager* PresentManager::Get() noexcept {
    return GetState().manager;
}

void PresentManager::Set(const IMainSearchPathManager& manager, Tolvex::EventMgr& events) {
    State& state = GetState();
    state.destruction =
        events.Subscribe<PathManagerWillBeDestroyedEvent>([&state](const PathManagerWillBeDestroyedEvent& event) {
            if (&event.GetManager() == state.manager)
                Forget();
        });
    state.manager = &manager;
}

void PresentManager::Forget() noexcept {
    State& state = GetState();
    state.manager = nullptr;
    state.destruction.Disconnect();
}

} // namespace PathManagement
