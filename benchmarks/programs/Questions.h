#pragma once

#include "foundation/text/ustring.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace KxBenchmarks {

/// Names one behind the other in one text: reading the questions should cost a contender next to nothing.
class PackedNames {
public:
    explicit PackedNames(std::span<const Tolvex::ustring_view> names);
    PackedNames(const PackedNames&) = delete;
    PackedNames& operator=(const PackedNames&) = delete;

    [[nodiscard]] const std::vector<Tolvex::ustring_view>& Get() const noexcept { return names; }

private:
    Tolvex::ustring text;
    std::vector<Tolvex::ustring_view> names;
};

/// A file of questions: names and the files that answer them.
class Questions {
public:
    struct Question {
        Tolvex::ustring name;
        Tolvex::ustring answer; ///< an absolute path; empty when nothing answers
    };

    /// Reads "name TAB file below `tree`" or "name TAB -", one a line. Throws std::runtime_error when there is none.
    Questions(const std::string& file, const std::string& tree);

    [[nodiscard]] const std::vector<Question>& Get() const noexcept { return questions; }

    /// `count` names, at most all, in an order that follows from `seed`.
    [[nodiscard]] PackedNames Shuffle(std::uint32_t seed, std::size_t count) const;

private:
    std::vector<Question> questions;
};

} // namespace KxBenchmarks
