#include "foundation/storage/FileReplacement.h"

#include "../posix/DescriptorBuffer.h"
#include "../posix/FileDescriptor.h"

#include <atomic>
#include <fcntl.h>
#include <istream>
#include <optional>
#include <ostream>
#include <sys/stat.h>
#include <utility>

namespace Tolvex {

using Path = std::filesystem::path;

namespace {

[[noreturn]] void Fail(const Path& file, int error = errno) {
    throw std::filesystem::filesystem_error("The file cannot be replaced", file,
                                            std::error_code(error, std::generic_category()));
}

/// Where a file lies, its last links followed as well, also when they lead to nothing yet.
Path Resolve(Path file) {
    constexpr int mostLinks = 40; // as the kernel
    std::error_code ignored;
    for (int links = 0; links < mostLinks && std::filesystem::is_symlink(file, ignored); ++links)
        file = file.parent_path() / std::filesystem::read_symlink(file, ignored);
    return std::filesystem::absolute(file);
}

/// Calls `make` with names beside the file until one is not taken, as it may be by what a killed process left. Returns
/// the name; throws for any other failure.
template <class Make>
Path MakeTemporary(const Path& file, const Make& make) {
    static std::atomic<unsigned> made = 0;
    for (;;) {
        std::string name(1, '.');
        name.append(file.filename().native()).append(1, '.').append(std::to_string(::getpid()));
        name.append(1, '.').append(std::to_string(made++)).append(".new");
        Path path = file.parent_path() / name;
        if (make(path.c_str()))
            return path;
        if (errno != EEXIST)
            Fail(file);
    }
}

/// Reads from the beginning of a file that stays open for as long as the stream.
class ReadingStream final : public std::istream {
public:
    explicit ReadingStream(FileDescriptor opened)
        : std::istream(nullptr), descriptor(std::move(opened)), buffer(descriptor.Get()) {
        rdbuf(&buffer);
    }

private:
    FileDescriptor descriptor;
    DescriptorBuffer buffer;
};

} // namespace

class FileReplacement::State {
public:
    explicit State(const Path& asked) : file(Resolve(asked)), descriptor(Open()), buffer(descriptor.Get()) {
        struct stat fresh {};
        if (::fstat(descriptor.Get(), &fresh) != 0)
            Fail(file);
        const auto made = std::chrono::seconds(fresh.st_mtim.tv_sec) + std::chrono::nanoseconds(fresh.st_mtim.tv_nsec);
        beginning = {fresh.st_dev, FileTime(made)};
        struct stat old {};
        if (::stat(file.c_str(), &old) != 0)
            return;
        if (S_ISDIR(old.st_mode))
            Fail(file, EISDIR);
        if (!S_ISREG(old.st_mode))
            Fail(file, EINVAL); // a device or a pipe would be lost
        // Who could read the old file can read the new one.
        if (::fchmod(descriptor.Get(), old.st_mode & 07777) != 0)
            Fail(file);
    }

    ~State() {
        if (!temporary.empty())
            ::unlink(temporary.c_str());
    }
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    void SetModificationTime(FileTime time) { stamp = time; }

    void Commit() {
        if (!stream.flush())
            Fail(file, buffer.GetError());
        if (stamp)
            SetStamp(*stamp);
        if (RetryInterrupted([&] { return ::fsync(descriptor.Get()); }) != 0)
            Fail(file);
        if (temporary.empty())
            GiveName();
        if (::rename(temporary.c_str(), file.c_str()) != 0)
            Fail(file);
        temporary.clear();
        // The new name has to reach the disk, too; where a folder cannot be flushed it gets there in its own time.
        const FileDescriptor folder(::open(file.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        static_cast<void>(::fsync(folder.Get()));
    }

    [[nodiscard]] std::unique_ptr<std::istream> ReadBack() const {
        FileDescriptor reading(::open(GetDescriptorPath().c_str(), O_RDONLY | O_CLOEXEC));
        if (!reading.IsOpen())
            Fail(file);
        return std::make_unique<ReadingStream>(std::move(reading));
    }

    [[nodiscard]] const Beginning& GetBeginning() const noexcept { return beginning; }
    [[nodiscard]] std::ostream& GetStream() noexcept { return stream; }
    [[nodiscard]] int GetError() const noexcept { return buffer.GetError(); }

private:
    /// A file without a name, which nobody has to clean away, where the file system knows them.
    [[nodiscard]] FileDescriptor Open() {
        FileDescriptor opened(::open(file.parent_path().c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0666));
        if (opened.IsOpen())
            return opened;
        if (errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL)
            Fail(file);
        temporary = MakeTemporary(file, [&opened](const char* name) {
            opened = FileDescriptor(::open(name, O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0666));
            return opened.IsOpen();
        });
        return opened;
    }

    void GiveName() {
        const std::string unnamed = GetDescriptorPath();
        temporary = MakeTemporary(file, [&unnamed](const char* name) {
            return ::linkat(AT_FDCWD, unnamed.c_str(), AT_FDCWD, name, AT_SYMLINK_FOLLOW) == 0;
        });
    }

    [[nodiscard]] std::string GetDescriptorPath() const { return "/proc/self/fd/" + std::to_string(descriptor.Get()); }

    void SetStamp(FileTime time) const {
        const auto sinceEpoch = time.time_since_epoch();
        const auto seconds = std::chrono::floor<std::chrono::seconds>(sinceEpoch);
        const timespec modified{seconds.count(), (sinceEpoch - seconds).count()};
        const timespec times[] = {{0, UTIME_OMIT}, modified};
        if (::futimens(descriptor.Get(), times) != 0)
            Fail(file);
    }

    Path file;
    Path temporary; // the name that the new contents have before they get the file's; mostly none
    FileDescriptor descriptor;
    DescriptorBuffer buffer;
    std::ostream stream{&buffer};
    Beginning beginning{};
    std::optional<FileTime> stamp;
};

FileReplacement::FileReplacement(const Path& file) : state(std::make_unique<State>(file)) {}

FileReplacement::~FileReplacement() = default;

FileReplacement::Beginning FileReplacement::GetBeginning() const noexcept {
    return state->GetBeginning();
}

std::ostream& FileReplacement::GetStream() noexcept {
    return state->GetStream();
}

std::unique_ptr<std::istream> FileReplacement::ReadBack() const {
    return state->ReadBack();
}

void FileReplacement::SetModificationTime(FileTime time) {
    state->SetModificationTime(time);
}

void FileReplacement::Commit() {
    state->Commit();
}

std::string FileReplacement::GetWriteFailure() const {
    const int error = state->GetError();
    return error == 0 ? std::string() : std::generic_category().message(error);
}

} // namespace Tolvex
