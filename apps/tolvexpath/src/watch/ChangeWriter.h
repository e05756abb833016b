#pragma once

#include "watch/ContentChanges.h"

#include <memory>

namespace TolvexPath {

class Output;

/// Tells of changes while they happen. What it is told is written out at once.
class ChangeWriter {
public:
    virtual ~ChangeWriter() = default;

    /// Changes are told from now on.
    virtual void BeginWatch(std::size_t folderCount) = 0;
    virtual void Write(const ContentChanges& changes) = 0;
};

/// Writes to `output` for people, or one JSON object a line.
[[nodiscard]] std::unique_ptr<ChangeWriter> CreateChangeWriter(Output& output, bool asJson);

} // namespace TolvexPath
