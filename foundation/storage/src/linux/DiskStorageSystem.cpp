#include "../PathText.h"
#include "ChangeMarkReader.h"
#include "DiskFolder.h"
#include "DiskPaths.h"
#include "foundation/storage/StorageSystem.h"

#include <algorithm>

namespace Tolvex {
namespace {

constexpr std::string_view diskScheme = "file";

class DiskStorageSystem final : public StorageSystem {
public:
    explicit DiskStorageSystem(const IClock& clock) : clock(clock) {}

    [[nodiscard]] std::string_view getScheme() const noexcept override { return diskScheme; }

    [[nodiscard]] std::unique_ptr<Folder> openFolder(const AbsoluteIRI& location) const override {
        if (location.getScheme() != diskScheme)
            throw StorageError(StorageFailure::invalidLocation, location);
        return OpenDiskFolder(location, clock);
    }

    [[nodiscard]] ChangeMark takeChangeMark(const AbsoluteIRI& location) const noexcept override {
        try {
            if (location.getScheme() == diskScheme)
                return ReadMarkOfPath(ToUtf8(location.getPath()), clock);
        } catch (const std::exception&) { // no memory for the path: it could not have been opened either
        }
        return {};
    }

    void takeChangeMarks(std::span<const AbsoluteIRI* const> locations,
                         std::span<ChangeMark> marks) const noexcept override {
        try {
            if (std::ranges::all_of(locations, [](const auto* each) { return each->getScheme() == diskScheme; }))
                return ReadMarksOfPaths(locations, marks, clock);
        } catch (const std::exception&) { // no memory for the paths
        }
        StorageSystem::takeChangeMarks(locations, marks);
    }

    [[nodiscard]] CanonicalAbsoluteIRI canonicalise(const AbsoluteIRI& location) const override {
        if (location.isEmpty())
            return {};
        const bool isOurs = location.getScheme() == diskScheme;
        const auto path = isOurs ? ResolveDiskPath(location.getPath()) : CleanPath(location.getPath());
        if (path == location.getPath())
            return CanonicalAbsoluteIRI::fromCanonical(location);
        return CanonicalAbsoluteIRI::fromCanonical(AbsoluteIRI(location.getScheme(), path));
    }

private:
    const IClock& clock;
};

} // namespace

const StorageSystemReference& GetDiskStorageSystem() {
    static const auto system = CreateDiskStorageSystem(GetSystemClock());
    return system;
}

StorageSystemReference CreateDiskStorageSystem(const IClock& clock) {
    return std::make_shared<const DiskStorageSystem>(clock);
}

} // namespace Tolvex
