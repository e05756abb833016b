#include "foundation/environment/CodeFiles.h"

#include <algorithm>
#include <array>

namespace Tolvex {

namespace {

struct CodeFileExtension {
    ustring_view extension;
    ItemKind kind;
};

// Most wanted first: a native module before code that was prepared, that before its source.
constexpr auto codeFileExtensions = std::to_array<CodeFileExtension>({
    {u".kxa", ItemKind::native},
    {u".kxp", ItemKind::code},
    {u".kx", ItemKind::code},
});

} // namespace

ItemKind GetItemKindForExtension(ustring_view extension) noexcept {
    const auto found = std::find_if(codeFileExtensions.begin(), codeFileExtensions.end(),
                                    [extension](const auto& known) { return IsSameText(known.extension, extension); });
    return found == codeFileExtensions.end() ? ItemKind::other : found->kind;
}

std::span<const ustring> GetCodeFileExtensions() {
    static const auto extensions = [] {
        std::array<ustring, codeFileExtensions.size()> list;
        std::transform(codeFileExtensions.begin(), codeFileExtensions.end(), list.begin(),
                       [](const auto& known) { return ustring(known.extension); });
        return list;
    }();
    return extensions;
}

} // namespace Tolvex
