#include "module/InstallationCacheFile.h"

#include <boost/uuid/name_generator_sha1.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <cstdlib>

namespace PathManagement::detail {

namespace fs = std::filesystem;

namespace {

std::optional<fs::path> GetAbsolutePath(const char* variable) {
    const char* const value = std::getenv(variable);
    return value != nullptr && *value == '/' ? std::optional<fs::path>(value) : std::nullopt;
}

/// By the XDG base directory rules, which pass over a path that is not absolute.
std::optional<fs::path> FindCacheFolderOfUser() {
    if (auto folder = GetAbsolutePath("XDG_CACHE_HOME"))
        return folder;
    const auto home = GetAbsolutePath("HOME");
    return home ? std::optional(*home / ".cache") : std::nullopt;
}

std::string MakeFileName(const Tolvex::AbsoluteIRI& installation) {
    const boost::uuids::name_generator_sha1 generator(boost::uuids::ns::url());
    return "path-cache-" + to_string(generator(Tolvex::ToUtf8(installation.toString()))) + ".xml";
}

} // namespace

std::optional<fs::path> FindInstallationCacheFile(const Tolvex::CanonicalAbsoluteIRI& installation) {
    const auto caches = FindCacheFolderOfUser();
    if (!caches)
        return std::nullopt;
    const fs::path folder = *caches / "tolvex";
    const Tolvex::CanonicalAbsoluteIRI location(Tolvex::AbsoluteIRI("file", Tolvex::FromUtf8(folder.native())), {});
    if (installation == location || installation.isAncestorOf(location))
        return std::nullopt;
    return folder / MakeFileName(installation);
}

} // namespace PathManagement::detail
