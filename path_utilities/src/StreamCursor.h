#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <istream>
#include <limits>
#include <string_view>

namespace PathManagement {

/// Reads a stream's characters where they stand in the stream's own buffer, and takes not one more than asked for. A
/// source that throws counts as one that has ended.
class StreamCursor {
public:
    explicit StreamCursor(std::istream& stream) : buffer(stream.good() ? stream.rdbuf() : nullptr) {
        if (buffer != nullptr)
            ShowBuffer();
    }
    StreamCursor(const StreamCursor&) = delete;
    StreamCursor& operator=(const StreamCursor&) = delete;
    ~StreamCursor() { Settle(); }

    /// The characters at hand, at least one unless the stream has ended.
    [[nodiscard]] std::string_view GetAvailable() {
        if (next == end)
            Refill();
        return {next, static_cast<std::size_t>(end - next)};
    }

    /// REQUIRES: `count` is not more than what is available.
    void Take(std::size_t count) noexcept { next += count; }

    /// How many characters were taken.
    [[nodiscard]] std::uint64_t GetPosition() const noexcept {
        return settled + static_cast<std::uint64_t>(next - begin);
    }

private:
    /// Names the positions of a stream buffer, which are there for classes derived from it.
    struct Positions : std::streambuf {
        static const char* Next(std::streambuf& buffer) { return (buffer.*&Positions::gptr)(); }
        static const char* End(std::streambuf& buffer) { return (buffer.*&Positions::egptr)(); }
        static void Advance(std::streambuf& buffer, int count) { (buffer.*&Positions::gbump)(count); }
    };

    void ShowBuffer() {
        begin = next = Positions::Next(*buffer);
        end = Positions::End(*buffer);
    }

    /// Tells the stream buffer what was taken from it.
    void Settle() {
        settled += static_cast<std::uint64_t>(next - begin);
        for (; begin != next; begin += std::min<std::ptrdiff_t>(next - begin, mostAtOnce)) {
            if (begin == &single)
                buffer->sbumpc();
            else
                Positions::Advance(*buffer, static_cast<int>(std::min<std::ptrdiff_t>(next - begin, mostAtOnce)));
        }
    }

    void Refill() {
        if (buffer == nullptr)
            return;
        Settle();
        const int character = Peek();
        ShowBuffer();
        if (next != end || character == EOF)
            return;
        // A source without a buffer gives one character at a time.
        single = static_cast<char>(character);
        begin = next = &single;
        end = begin + 1;
    }

    int Peek() noexcept {
        try {
            return buffer->sgetc();
        } catch (...) {
            return EOF;
        }
    }

    static constexpr std::ptrdiff_t mostAtOnce = std::numeric_limits<int>::max();

    std::streambuf* buffer;
    const char* begin = nullptr; // what the stream buffer takes for its next character
    const char* next = nullptr;
    const char* end = nullptr;
    std::uint64_t settled = 0;
    char single = 0;
};

} // namespace PathManagement
