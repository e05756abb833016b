#pragma once

#include "path_interfaces/IPathEntry.h"

namespace TolvexPath {

class Output;

/// Draws an entry and the entries below it as a tree for people: name, kind and how many files of which kind.
class EntryTree {
public:
    struct Options {
        bool inColour = false;
        bool withFiles = false; ///< list the files, too
    };

    EntryTree(Output& output, Options options) noexcept : output(output), options(options) {}

    void Draw(const PathManagement::IPathEntry& entry) const;

private:
    void DrawBelow(const PathManagement::IPathEntry& entry, const std::string& indent) const;
    void WriteFolder(const PathManagement::IPathEntry& entry, Tolvex::ustring_view name) const;
    void Paint(std::string_view colour, std::string_view text) const;

    Output& output;
    Options options;
};

} // namespace TolvexPath
