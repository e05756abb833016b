#include "micro/FolderForest.h"

#include "path_utilities/PathText.h"

#include <cstdlib>
#include <fstream>

namespace KxBenchmarks {

namespace {

constexpr std::size_t filesInAFolder = 5;

std::filesystem::path MakeRoot() {
    const std::filesystem::path memory = "/dev/shm";
    const auto place = is_directory(memory) ? memory : std::filesystem::temp_directory_path();
    std::string pattern = (place / "kx-forest-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
        throw std::filesystem::filesystem_error("cannot make a folder", place, std::error_code());
    return std::filesystem::canonical(pattern);
}

} // namespace

FolderForest::FolderForest(std::size_t count) : root(MakeRoot()) {
    for (std::size_t i = 0; i != count; ++i) {
        const auto folder = GetFolder(i);
        create_directory(folder);
        for (std::size_t file = 0; file != filesInAFolder; ++file)
            std::ofstream(folder / ("file" + std::to_string(i * filesInAFolder + file) + ".kx"));
        folders.emplace_back(PathManagement::GetIRIFromString(Tolvex::FromUtf8(folder.string())),
                             Tolvex::ustring_view());
    }
}

FolderForest::~FolderForest() {
    std::error_code ignored;
    std::filesystem::remove_all(root, ignored);
}

void FolderForest::Change(std::size_t number) const {
    const auto file = GetFolder(number) / ("new" + std::to_string(number) + ".kx");
    if (!std::filesystem::remove(file))
        std::ofstream{file};
}

std::filesystem::path FolderForest::GetFolder(std::size_t number) const {
    return root / ("folder" + std::to_string(number));
}

} // namespace KxBenchmarks
