#include "FileFolderObserver.h"

namespace Tolvex {

FileFolderObserver::FileFolderObserver(std::shared_ptr<ObserverRegistry> registry, CanonicalAbsoluteIRI folder,
                                       const ChangeMark& mark, ObservationLevel level)
    : registry(std::move(registry)), folder(std::move(folder)), mark(mark), level(level) {
    this->registry->Add(this->folder, *this);
}

FileFolderObserver::~FileFolderObserver() {
    registry->Remove(folder, *this);
}

bool FileFolderObserver::hasChanged() const noexcept {
    if (changed.load(std::memory_order_relaxed))
        return true;
    if (level.load(std::memory_order_relaxed) == ObservationLevel::none || !LooksChanged())
        return false;
    changed.store(true, std::memory_order_relaxed);
    return true;
}

bool FileFolderObserver::LooksChanged() const noexcept {
    const auto storage = registry->GetStorage();
    const auto now = storage ? storage->takeChangeMark(folder) : ChangeMark();
    return !mark.ProvesUnchanged(now);
}

} // namespace Tolvex
