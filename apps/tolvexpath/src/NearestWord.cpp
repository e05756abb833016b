#include "NearestWord.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace TolvexPath {

namespace {

/// How many letters have to be put in, taken out, exchanged or swapped with their neighbour to make one of the other.
std::size_t CountSlips(std::string_view a, std::string_view b) {
    std::array<std::vector<std::size_t>, 3> rows; // of the beginning of `a` two letters shorter, one shorter, and whole
    rows.fill(std::vector<std::size_t>(b.size() + 1));
    for (std::size_t j = 0; j <= b.size(); ++j)
        rows[2][j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::rotate(rows.begin(), rows.begin() + 1, rows.end());
        auto& [twoAbove, above, row] = rows;
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            row[j] = std::min({above[j] + 1, row[j - 1] + 1, above[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[j] = std::min(row[j], twoAbove[j - 2] + 1);
        }
    }
    return rows[2][b.size()];
}

} // namespace

std::string FindNearestWord(std::string_view word, std::span<const std::string> known) {
    std::pair<std::size_t, std::string> nearest{word.size() / 3 + 1, ""}; // no more than a third of it is wrong
    for (const std::string& candidate : known)
        if (const std::size_t slips = CountSlips(word, candidate); slips < nearest.first)
            nearest = {slips, candidate};
    return nearest.second;
}

} // namespace TolvexPath
