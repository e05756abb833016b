// read_floor FILE: reads the whole file into memory and makes nothing of it. Prints how large it is: what starting from
// the file costs at least.
#include <cstdio>
#include <memory>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

int main(int count, char** arguments) {
    const int file = open(count == 2 ? arguments[1] : "", O_RDONLY | O_CLOEXEC);
    struct stat status {};
    if (fstat(file, &status) != 0)
        return 1;
    const auto size = static_cast<std::size_t>(status.st_size);
    const auto contents = std::make_unique_for_overwrite<char[]>(size);
    std::size_t done = 0;
    for (long part = 0; (part = read(file, contents.get() + done, size - done)) > 0;)
        done += static_cast<std::size_t>(part);
    std::printf("ready %zu\n", done);
    return done == size ? 0 : 1;
}
