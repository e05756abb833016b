// scan_floor PATHFILE: lists the folders named in the file, one a line, and all below them; keeps nothing. Prints how
// many files there are when it has seen them all: what any scan of the same folders costs at least on one thread.
#include "floors/linux/FolderWalk.h"

#include <cstdio>
#include <fstream>
#include <string>

int main(int count, char** arguments) {
    std::ifstream folders(count == 2 ? arguments[1] : "");
    std::size_t files = 0;
    bool isWhole = folders.is_open();
    for (std::string folder; std::getline(folders, folder);)
        isWhole = KxBenchmarks::WalkMainFolder(folder.c_str(), [&files](std::string_view) { ++files; }) && isWhole;
    std::printf("ready %zu\n", files);
    return isWhole ? 0 : 1;
}
