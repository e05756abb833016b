#include "foundation/storage/Clock.h"

#include <ctime>

namespace Tolvex {
namespace {

class SystemClock final : public IClock {
public:
    [[nodiscard]] FileTime Now() const override {
        timespec time{};
        ::clock_gettime(CLOCK_REALTIME_COARSE, &time);
        return FileTime(std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
    }
};

} // namespace

const IClock& GetSystemClock() {
    static const SystemClock clock;
    return clock;
}

} // namespace Tolvex
