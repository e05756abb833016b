#include "MountTable.h"

#include "StorageTypes.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <sstream>

namespace Tolvex {
namespace {

/// Reads from a text. Throws for want of memory, which streams otherwise take for the end.
std::istringstream MakeReader(std::string text) {
    std::istringstream reader(std::move(text));
    reader.exceptions(std::ios::badbit);
    return reader;
}

/// Blanks and the like are written as a backslash and three octal digits.
std::string Unescape(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 3 < text.size()) {
            plain += static_cast<char>(std::strtol(std::string(text.substr(i + 1, 3)).c_str(), nullptr, 8));
            i += 3;
        } else {
            plain += text[i];
        }
    }
    return plain;
}

} // namespace

MountTable::MountTable() : file(std::fopen("/proc/self/mountinfo", "re")) {
    if (file)
        std::setvbuf(file.get(), nullptr, _IONBF, 0); // what was read before must not be taken for what is there now
    mounts = Read();
}

StorageKind MountTable::GetKind(std::string_view path) const {
    for (auto left = path;; left = left.substr(0, left.rfind('/'))) {
        if (const auto found = mounts.find(left.empty() ? "/" : left); found != mounts.end())
            return found->second.kind;
        if (left.size() <= 1)
            return StorageKind::silent;
    }
}

bool MountTable::HasRemote() const noexcept {
    return std::ranges::any_of(mounts, [](const auto& each) { return each.second.kind == StorageKind::remote; });
}

int MountTable::GetNumber() const noexcept {
    return file ? ::fileno(file.get()) : -1;
}

std::vector<std::string> MountTable::Update() {
    auto now = Read();
    std::vector<std::string> changed;
    const auto addMissing = [&](const Mounts& from, const Mounts& in) {
        for (const auto& [path, mount] : from)
            if (const auto found = in.find(path); found == in.end() || found->second != mount)
                changed.push_back(path);
    };
    addMissing(now, mounts);
    addMissing(mounts, now);
    mounts = std::move(now);
    return changed;
}

MountTable::Mounts MountTable::Read() const {
    if (!file)
        return {};
    std::rewind(file.get());
    std::string text;
    std::array<char, 4096> part;
    while (const auto size = std::fread(part.data(), 1, part.size(), file.get()))
        text.append(part.data(), size);
    Mounts read;
    auto lines = MakeReader(std::move(text));
    for (std::string line; std::getline(lines, line);)
        AddLine(read, line);
    return read;
}

/// "36 35 98:0 / /mnt rw,noatime shared:1 - ext4 /dev/sda1 rw": number, parent, device, root, place, options, any
/// number of optional fields, a dash, type.
void MountTable::AddLine(Mounts& read, std::string_view line) {
    const auto dash = line.find(" - ");
    if (dash == std::string_view::npos)
        return;
    auto fields = MakeReader(std::string(line.substr(0, dash)));
    auto fieldsBehind = MakeReader(std::string(line.substr(dash + 3)));
    std::string number, parent, device, root, place, type;
    if (fields >> number >> parent >> device >> root >> place && fieldsBehind >> type)
        read[Unescape(place)] = {std::move(number), GetKindOfType(type)}; // the last one at a place is on top
}

} // namespace Tolvex
