#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

TEST(ToolboxCacheCorpus, HoldsForEveryFile) {
    std::size_t files = 0;
    for (const auto& file : std::filesystem::directory_iterator(KX_CACHE_CORPUS)) {
        std::ostringstream text;
        text << std::ifstream(file.path(), std::ios::binary).rdbuf();
        const std::string bytes = text.str();
        for (std::size_t size = 0; size <= bytes.size(); ++size)
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), size);
        ++files;
    }
    EXPECT_GE(files, 10u);
}

} // namespace
