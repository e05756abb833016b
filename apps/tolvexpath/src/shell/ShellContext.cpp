#include "shell/ShellContext.h"

#include "FolderArguments.h"
#include "Messages.h"
#include "PathAlteration.h"

#include "foundation/environment/CodeFiles.h"
#include "foundation/messages/Catalogue.h"

#include <fmt/format.h>

namespace TolvexPath {

Finder ShellContext::MakeFinder(bool all) {
    const auto usual = Tolvex::GetCodeFileExtensions();
    SearchDefaults defaults;
    defaults.extensions.assign(usual.begin(), usual.end());
    defaults.all = all;
    return {GetManager().GetPath(), std::move(defaults)};
}

void ShellContext::Report(std::string_view text) const {
    PrintMessage(fmt::format("{}{}{}", place, place.empty() ? "" : ": ", text));
}

void ShellContext::Report(const Tolvex::Notification& problems) const {
    problems.ForEach([this](const Tolvex::Notification::Entry& problem) {
        Report(Tolvex::GetMessageText(problem.message));
        return false;
    });
}

bool ShellContext::Alter(const std::function<void(Tolvex::Notification&)>& change) {
    const Tolvex::Notification problems = AlterPath(change);
    Report(problems);
    return problems.IsEmpty();
}

void ShellContext::FollowPackages() {
    session.FollowPackages();
    Report(session.TakePackageReport());
}

bool ShellContext::SetFolders(const IRIs& folders) {
    return Alter([&](Tolvex::Notification& problems) {
        GetManager().SetPathEntries(PathManagement::CanonicalIRIRange(folders), problems);
    });
}

Tolvex::CanonicalAbsoluteIRI LocateFolder(const std::string& folder) {
    return {MakeLocation(folder), u""};
}

} // namespace TolvexPath
