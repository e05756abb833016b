#pragma once

#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace TolvexPath {

/// The path cache file that a command line names, for commands that can do without listing folders.
class CacheArguments {
public:
    /// Declares --cache and --root, which fill this object; it has to stay where it is.
    void DeclareOptions(CLI::App& arguments);

    /// Loads the file, if one is named, into the process's factory. One that cannot be used is reported once, and the
    /// folders are read instead.
    void Load() const;

private:
    std::optional<std::string> file;
    std::string root;
};

} // namespace TolvexPath
