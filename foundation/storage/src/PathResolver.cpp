#include "PathResolver.h"

#include "PathText.h"

namespace Tolvex {

PathResolver::PathResolver(Probe probe) : probe(std::move(probe)) {}

ustring PathResolver::Resolve(ustring_view path) {
    resolved.clear();
    missingNames = 0;
    linksLeft = linkLimit;
    ForEachName(path, [&](ustring_view name) {
        const auto before = resolved;
        if (Enter(name))
            return;
        resolved = before;
        Append(name, false);
        linksLeft = linkLimit;
    });
    return resolved.empty() ? ustring(u"/") : resolved;
}

void PathResolver::Append(ustring_view name, bool exists) {
    AppendName(resolved, name);
    if (!exists)
        ++missingNames;
}

void PathResolver::Leave() {
    DropName(resolved);
    if (missingNames > 0)
        --missingNames;
}

/// False when a link leads in circles; `resolved` is then to be thrown away.
bool PathResolver::Enter(ustring_view name) {
    if (name == u".")
        return true;
    if (name == u"..") {
        Leave();
        return true;
    }
    if (missingNames > 0) {
        Append(name, false);
        return true;
    }
    const auto step = probe(resolved, name);
    if (step.kind == Kind::link)
        return linksLeft-- > 0 && Follow(step.text);
    const bool exists = step.kind == Kind::other;
    Append(exists ? ustring_view(step.text) : name, exists);
    return true;
}

bool PathResolver::Follow(ustring_view target) {
    if (target.starts_with(u'/'))
        resolved.clear();
    bool straight = true;
    ForEachName(target, [&](ustring_view name) { straight = straight && Enter(name); });
    return straight;
}

} // namespace Tolvex
