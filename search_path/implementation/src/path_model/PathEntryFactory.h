#pragma once

#include "path_interfaces/IPathEntryFactory.h"
#include "path_model/EntryBuilder.h"

namespace PathManagement {

/// Makes entries from the folders of one storage system and hands live, up-to-date ones out again.
class PathEntryFactory final : public IPathEntryFactory {
public:
    using PathEntryChildren = PathManagement::PathEntryChildren;

    /// `observers` and `descriptors` must outlive the factory and every entry it makes.
    PathEntryFactory(Tolvex::CanonicalAbsoluteIRI installationFolder, Tolvex::StorageSystemReference storage,
                     const TolvexPackages::IPackageDescriptorFactory& descriptors,
                     boost::shared_ptr<Tolvex::EventMgr> eventManager, Tolvex::IFileFolderObserverFactory& observers);
    ~PathEntryFactory() override;

    [[nodiscard]] PathEntryVector CreatePathEntries(std::span<const Tolvex::AbsoluteIRI> locations,
                                                    const IFolderMonitor& monitor,
                                                    Tolvex::Notification& problems) const override;
    [[nodiscard]] std::shared_ptr<const IPathEntry>
    GetLiveEntry(const Tolvex::CanonicalAbsoluteIRI& location) const override;
    [[nodiscard]] PathEntryState GetEntryState(const IPathEntry& entry) const override;
    [[nodiscard]] PathEntryFactoryCounters GetCounters() const override;
    [[nodiscard]] std::shared_ptr<const IPathEntry> CreatePathEntry(const Tolvex::CanonicalAbsoluteIRI& location,
                                                                    const IFolderMonitor& monitor) const override;
    [[nodiscard]] std::shared_ptr<const IPathEntry> CreatePathEntry(const Tolvex::AbsoluteIRI& location,
                                                                    const IFolderMonitor& monitor) const override;
    [[nodiscard]] Tolvex::ChangeReport GetChangesSince(Tolvex::ChangeToken token) const override;
    void LoadToolboxCache(std::istream& cacheFile, const Tolvex::AbsoluteIRI& cacheRoot,
                          Tolvex::FileTime writtenAt) override;
    void WriteToolboxCache(std::ostream& cacheFile, const Tolvex::AbsoluteIRI& cacheRoot) const override;
    void DropToolboxCache() override;
    void UpdateObservation(std::span<const std::shared_ptr<const IPathEntry>> entries,
                           const IFolderMonitor& monitor) const override;
    [[nodiscard]] Tolvex::CanonicalAbsoluteIRI GetInstallationFolder() const override;

    /// The kinds of child folders that an entry of a type has, in the order in which they are considered. A value that
    /// is no PathEntryType ends the process.
    [[nodiscard]] static std::span<const PathEntryType> GetValidChildEntryTypesForEntryType(PathEntryType type);

    /// Files one finished child by its type. A type that is no child's ends the process.
    static void PushChildEntryToCurrentPathEntry(PathEntryChildren& children, std::shared_ptr<const IPathEntry> child);

private:
    [[nodiscard]] std::shared_ptr<const PathEntry> FindUpToDate(const Tolvex::AbsoluteIRI& location,
                                                                const IFolderMonitor& monitor) const;
    [[nodiscard]] bool IsOutOfDateAtOneLook(const PathEntry& entry) const;
    void UpdateObservation(const IPathEntry& entry, const IFolderMonitor& monitor) const;
    [[nodiscard]] std::shared_ptr<const PathEntry> GetForWriting(const CachedEntry& live) const;
    [[nodiscard]] std::shared_ptr<const PathEntry> CreateFromExistingFolder(const Tolvex::AbsoluteIRI& location,
                                                                            const IFolderMonitor& monitor) const;
    void UseOneEntryForOneFolder(PathEntryVector& entries) const;

    Tolvex::CanonicalAbsoluteIRI installationFolder;
    mutable EntryBuilding building;
    Tolvex::ScopedConnection destroyedConnection; // last: cut before anything its handler uses goes
};

} // namespace PathManagement
