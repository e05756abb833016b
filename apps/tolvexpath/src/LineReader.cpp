#include "LineReader.h"

#include <algorithm>
#include <utility>

namespace TolvexPath {

namespace {
constexpr std::size_t readSize = 1 << 16; // bytes
}

LineReader::LineReader(InputFile input) : input(std::move(input)) {}

bool LineReader::IsLineReady() {
    searched = std::min(buffer.find('\n', searched), buffer.size());
    return searched < buffer.size() || atEnd;
}

std::optional<std::string_view> LineReader::Next() {
    while (!IsLineReady())
        ReadMore();
    if (lineStart == buffer.size())
        return std::nullopt;
    std::string_view line(buffer.data() + lineStart, searched - lineStart);
    if (constexpr std::string_view mark = "\xEF\xBB\xBF"; lineNumber == 0 && line.starts_with(mark))
        line.remove_prefix(mark.size());
    lineStart = searched = std::min(searched + 1, buffer.size());
    ++lineNumber;
    return line;
}

void LineReader::ReadMore() {
    buffer.erase(0, lineStart);
    searched -= std::exchange(lineStart, 0);
    const std::size_t kept = buffer.size();
    buffer.resize(kept + readSize);
    const std::size_t count = input.Read(std::span(buffer).subspan(kept));
    buffer.resize(kept + count);
    atEnd = count == 0;
}

} // namespace TolvexPath
