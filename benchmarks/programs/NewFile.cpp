#include "programs/NewFile.h"

#include <fstream>
#include <stdexcept>

namespace KxBenchmarks {

namespace {

constexpr auto stem = "kxNewOfAll";
constexpr Tolvex::ustring_view wideStem = u"kxNewOfAll";

} // namespace

NewFile::NewFile(const std::string& folder) : file(folder + '/' + stem + ".kx") {
    if (exists(file))
        throw std::runtime_error("there is a file already: " + file.string());
}

NewFile::~NewFile() {
    std::error_code ignored;
    std::filesystem::remove(file, ignored);
}

void NewFile::Create() const {
    if (!std::ofstream(file))
        throw std::runtime_error("cannot create " + file.string());
}

void NewFile::Remove() const {
    if (!std::filesystem::remove(file))
        throw std::runtime_error("somebody else removed " + file.string());
}

Tolvex::ustring_view NewFile::GetStem() noexcept {
    return wideStem;
}

Tolvex::ustring NewFile::GetPath() const {
    return Tolvex::FromUtf8(file.string());
}

} // namespace KxBenchmarks
