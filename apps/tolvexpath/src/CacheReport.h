#pragma once

#include "path_utilities/ToolboxCacheRecord.h"

#include <memory>
#include <string>

namespace TolvexPath {

class Output;

/// Tells what a path cache file holds while it is read.
class CacheReport {
public:
    virtual ~CacheReport() = default;

    virtual void Add(const PathManagement::ToolboxCacheRecord& record) = 0;
    /// `refusal` says why reading ended early; empty when it did not.
    virtual void Finish(const std::string& refusal) = 0;
};

/// A report to `output`, for people or as one JSON object, with every name or only the number of top-level folders.
[[nodiscard]] std::unique_ptr<CacheReport> CreateCacheReport(Output& output, bool withNames, bool asJson);

} // namespace TolvexPath
