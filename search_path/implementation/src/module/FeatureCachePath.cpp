#include "module/GatewayArguments.h"
#include "module/InstallationCacheFile.h"
#include "path_utilities/ToolboxCacheFile.h"
#include "search_path/Accessors.h"
#include "search_path/BuiltIns.h"

namespace PathManagement {

namespace fs = std::filesystem;

namespace {

using Tolvex::ustring;
using Tolvex::ustring_view;

constexpr std::array<ustring_view, 4> words{u"status", u"write", u"load", u"drop"};
enum class Option : std::size_t { status, write, load, drop };

/// Which file FeatureCachePath has loaded last and not dropped since; empty for none.
fs::path& GetLoadedFile() {
    static fs::path file;
    return file;
}

[[noreturn]] void Raise(const char* key, std::vector<ustring> arguments = {}) {
    TolvexArrays::RaiseHostError({"TOLVEX:CachePath", key, std::move(arguments)});
}

[[noreturn]] void Raise(const char* key, const fs::path& file, const std::string& reason) {
    Raise(key, {Tolvex::FromUtf8(file.native()), Tolvex::FromUtf8(reason)});
}

ustring_view GetFileText(const vxArray& array) {
    const auto text = TolvexArrays::GetScalarText(array);
    if (!text || text->empty() || Tolvex::ContainsUnit(*text, u'\0'))
        Raise("InvalidFile");
    return *text;
}

fs::path GetDefaultFile() {
    auto file = detail::FindInstallationCacheFile(GetPathEntryFactory().GetInstallationFolder());
    if (!file)
        Raise("NoCacheFolder");
    return *std::move(file);
}

/// `given` is null when the caller named no file.
fs::path GetFile(const vxArray* given) {
    if (given == nullptr)
        return GetDefaultFile();
    std::error_code error; // a relative name in a working folder that is gone
    auto file = fs::absolute(Tolvex::ToUtf8(GetFileText(*given)), error);
    if (error)
        Raise("InvalidFile");
    return file;
}

std::string Write(const fs::path& file, bool makeFolder) {
    IPathEntryFactory& factory = GetPathEntryFactory();
    std::error_code error;
    if (makeFolder && (fs::create_directories(file.parent_path(), error), error))
        Raise("FailedToSave", file, error.message());
    try {
        WriteToolboxPathCache(factory, factory.GetInstallationFolder(), file);
    } catch (const UnableToSaveToolboxCacheException& failure) {
        Raise("FailedToSave", file, failure.GetReason());
    }
    return file;
}

void LoadOrRaise(const fs::path& file) {
    IPathEntryFactory& factory = GetPathEntryFactory();
    try {
        LoadToolboxPathCache(factory, factory.GetInstallationFolder(), file);
    } catch (const ToolboxCacheWrongFormatException& failure) {
        Raise("FailedToLoad", file, failure.what());
    } catch (const Tolvex::StorageError& failure) {
        Raise("FailedToLoad", file, failure.what());
    }
}

std::string Load(fs::path file) {
    LoadOrRaise(file);
    return GetLoadedFile() = std::move(file);
}

std::string GetLoaded() {
    return GetLoadedFile().empty() ? "none" : GetLoadedFile().native();
}

std::string Drop() {
    GetPathEntryFactory().DropToolboxCache();
    std::string dropped = GetLoaded();
    GetLoadedFile().clear();
    return dropped;
}

std::string DescribeStatus() {
    const IPathEntryFactory& factory = GetPathEntryFactory();
    const auto file = detail::FindInstallationCacheFile(factory.GetInstallationFolder());
    std::error_code unknown;
    const bool exists = file && fs::exists(*file, unknown);
    return "file: " + (file ? file->native() : "none") + "\nexists: " + (exists ? "yes" : "no") +
           "\nloaded: " + GetLoaded() + "\nkept: " + std::to_string(factory.GetCounters().entriesKept);
}

std::string Perform(Option option, const vxArray* file) {
    switch (option) {
    case Option::status:
        return DescribeStatus();
    case Option::write:
        return Write(GetFile(file), file == nullptr);
    case Option::load:
        return Load(GetFile(file));
    case Option::drop:
        break;
    }
    return Drop();
}

} // namespace

void FeatureCachePath(int outputCount, vxArray* outputs[], int inputCount, vxArray* inputs[]) {
    detail::CheckArgumentCounts(outputCount, inputCount, {1, 1, 2});
    const auto word = detail::FindOption(words, *inputs[0]);
    if (!word)
        Raise("InvalidOption");
    const auto option = static_cast<Option>(*word);
    const vxArray* const file = inputCount > 1 ? inputs[1] : nullptr;
    if (file != nullptr && (option == Option::status || option == Option::drop))
        TolvexArrays::error_maxrhs();
    outputs[0] = TolvexArrays::MakeCharacterVector(Tolvex::FromUtf8(Perform(option, file))).release();
}

} // namespace PathManagement
