#include "programs/Questions.h"

#include <algorithm>
#include <fstream>
#include <numeric>
#include <random>
#include <stdexcept>

namespace KxBenchmarks {

using Tolvex::ustring_view;

PackedNames::PackedNames(std::span<const ustring_view> given) {
    text.reserve(std::accumulate(given.begin(), given.end(), std::size_t{0},
                                 [](std::size_t sum, ustring_view name) { return sum + name.size(); }));
    for (const ustring_view name : given) {
        names.emplace_back(text.data() + text.size(), name.size());
        text.append(name);
    }
}

Questions::Questions(const std::string& file, const std::string& tree) {
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        const auto tab = line.find('\t');
        if (tab == std::string::npos)
            throw std::runtime_error("a line without a tab in " + file);
        const auto answer = line.substr(tab + 1);
        questions.push_back({Tolvex::FromUtf8(line.substr(0, tab)),
                             answer == "-" ? Tolvex::ustring() : Tolvex::FromUtf8(tree + '/' + answer)});
    }
    if (questions.empty())
        throw std::runtime_error("no questions in " + file);
}

PackedNames Questions::Shuffle(std::uint32_t seed, std::size_t count) const {
    std::vector<ustring_view> names;
    for (const auto& question : questions)
        names.emplace_back(question.name);
    std::ranges::shuffle(names, std::mt19937(seed));
    names.resize(std::min(count, names.size()));
    return PackedNames(names);
}

} // namespace KxBenchmarks
