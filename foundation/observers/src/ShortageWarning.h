#pragma once

#include "foundation/diagnostics/LogChannel.h"
#include "foundation/observers/IFileFolderObserverFactory.h"

#include <atomic>
#include <mutex>
#include <string>

namespace Tolvex {

/// Keeps the warning that kernel watches ran out until somebody shows it. Safe from any thread.
class ShortageWarning {
public:
    [[nodiscard]] ChangeHandleWarning GetSetting() const noexcept { return setting.load(); }
    void SetSetting(ChangeHandleWarning newSetting) noexcept { setting.store(newSetting); }

    /// Does nothing when the setting forbids.
    void Raise(const std::string& text);
    /// Empty when there is none; else the warning, once.
    [[nodiscard]] std::string Take();

private:
    [[nodiscard]] bool Keep(const std::string& text);

    const LogChannel log{"searchpath::observers"};
    std::atomic<ChangeHandleWarning> setting = ChangeHandleWarning::once;
    std::mutex mutex;
    std::string pending;    // guarded by `mutex`
    bool wasRaised = false; // guarded by `mutex`
};

} // namespace Tolvex
