#include "path_utilities/ToolboxCacheFile.h"

#include "foundation/storage/FileReplacement.h"
#include "foundation/storage/StorageSystem.h"
#include "path_utilities/ToolboxCacheReader.h"
#include "path_utilities/ToolboxCacheWriter.h"

#include <algorithm>
#include <fstream>

namespace PathManagement {

namespace {

std::string Quote(const std::filesystem::path& file) {
    return "\"" + file.native() + "\"";
}

[[noreturn]] void RefuseToSave(const std::filesystem::path& file, const std::string& reason) {
    throw UnableToSaveToolboxCacheException(file.native(), reason);
}

/// The moment whose state is written, not later than it is for whoever stamps the folders below the root.
Tolvex::FileTime FindBeginning(const Tolvex::FileReplacement& replacement, const Tolvex::AbsoluteIRI& cacheRoot,
                               Tolvex::FileTime now) {
    const auto [device, stamp] = replacement.GetBeginning();
    const auto root = Tolvex::GetDiskStorageSystem()->takeChangeMark(cacheRoot);
    return root.present && root.device == device ? stamp : std::min(stamp, now);
}

void Save(const IPathEntryFactory& factory, const Tolvex::AbsoluteIRI& cacheRoot, const std::filesystem::path& file,
          Tolvex::FileTime now) {
    Tolvex::FileReplacement replacement(file);
    const auto began = FindBeginning(replacement, cacheRoot, now);
    try {
        factory.WriteToolboxCache(replacement.GetStream() << refuseNamesThatBreakTheFormat, cacheRoot);
    } catch (const UnableToSaveToolboxCacheException& failure) {
        const std::string systemText = replacement.GetWriteFailure();
        RefuseToSave(file, systemText.empty() ? failure.GetReason() : systemText + ".");
    }
    ReadToolboxCache(*replacement.ReadBack(), [](const auto&) {});
    replacement.SetModificationTime(began);
    replacement.Commit();
}

} // namespace

void WriteToolboxPathCache(const IPathEntryFactory& factory, const Tolvex::AbsoluteIRI& cacheRoot,
                           const std::filesystem::path& file, const Tolvex::IClock& clock) {
    try {
        Save(factory, cacheRoot, file, clock.Now());
    } catch (const UnableToSaveToolboxCacheException&) {
        throw;
    } catch (const Tolvex::MessageIdentifierException& refusal) {
        RefuseToSave(file, refusal.what());
    } catch (const ToolboxCacheWrongFormatException& refusal) {
        RefuseToSave(file, std::string("What was written cannot be read back: ") + refusal.what());
    } catch (const std::filesystem::filesystem_error& failure) {
        RefuseToSave(file, failure.code().message() + ".");
    }
}

void LoadToolboxPathCache(IPathEntryFactory& factory, const Tolvex::AbsoluteIRI& cacheRoot,
                          const std::filesystem::path& file) {
    std::error_code error;
    // Before the file is opened: when it is replaced in between, its records pass for older than they are, not younger.
    const auto modified = std::filesystem::last_write_time(file, error);
    std::ifstream stream(file, std::ios::binary);
    if (error || !stream)
        throw ToolboxCacheWrongFormatException(
            "The path cache file " + Quote(file) +
            " cannot be opened: " + (error ? error : std::make_error_code(std::errc(errno))).message() + ".");
    try {
        factory.LoadToolboxCache(stream, cacheRoot, Tolvex::FileTime(std::chrono::file_clock::to_sys(modified)));
    } catch (const ToolboxCacheWrongFormatException& refusal) {
        throw ToolboxCacheWrongFormatException(Quote(file) + ": " + refusal.what());
    }
}

} // namespace PathManagement
