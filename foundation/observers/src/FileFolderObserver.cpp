#include "FileFolderObserver.h"

#include "ObserverRegistry.h"

namespace Tolvex {

FileFolderObserver::FileFolderObserver(boost::intrusive_ptr<ObserverRegistry> registry,
                                       const CanonicalAbsoluteIRI& folder, const ChangeMark& mark,
                                       ObservationLevel level)
    : registry(std::move(registry)), mark(mark), level(level), folder(this->registry->Add(folder, *this)) {}

FileFolderObserver::~FileFolderObserver() {
    registry->Remove(*folder, *this);
}

bool FileFolderObserver::hasChanged() const noexcept {
    return IsChanged() || (GetLevel() != ObservationLevel::none && registry->FindChanged(*folder, *this));
}

} // namespace Tolvex
