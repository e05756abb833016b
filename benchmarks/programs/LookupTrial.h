#pragma once

#include "path_interfaces/IPath.h"
#include "programs/NameCatalogue.h"
#include "programs/Questions.h"

#include <functional>
#include <string>
#include <vector>

namespace KxBenchmarks {

/// One row's work: the same names for everybody, asked so many times over by each thread.
struct LookupTask {
    std::span<const Tolvex::ustring_view> names;
    std::size_t repeats = 1;
    std::size_t threads = 1;
    bool areFound = true;
};

/// Whoever answers questions about names.
struct LookupContender {
    std::string name;

    /// Nanoseconds from question to answer, which is handed out and dropped, as each thread sees them. Throws
    /// std::runtime_error when a name is found, or not, against expectation.
    std::function<double(const LookupTask&)> measure;

    /// The absolute path of the file that answers; empty when none does.
    std::function<Tolvex::ustring(Tolvex::ustring_view)> answer;
};

/// All that follow keep references to what they were made of.
[[nodiscard]] LookupContender MakePathContender(std::string name, const PathManagement::IPath& path);
[[nodiscard]] LookupContender MakeFlatMapContender(const NameCatalogue& catalogue);
[[nodiscard]] LookupContender MakeFlatTableContender(const NameCatalogue& catalogue);
[[nodiscard]] LookupContender MakeAccessorContender(const NameCatalogue& catalogue);
[[nodiscard]] LookupContender MakeEqualRangeContender(const NameCatalogue& catalogue);

/// Throws std::runtime_error at the first wrong answer.
void DemandRightAnswers(const LookupContender& contender, const Questions& questions);

} // namespace KxBenchmarks
