#include "PathCheck.h"

#include "KernelWatches.h"
#include "Messages.h"

#include "foundation/environment/StorageAccess.h"
#include "foundation/messages/Catalogue.h"
#include "foundation/observers/IFileFolderObserverFactory.h"
#include "path_utilities/PathText.h"
#include "search_path/Accessors.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

namespace TolvexPath {

using PathManagement::FilenameMatchingPolicy;
using PathManagement::FoundItem;
using PathManagement::GetStringFromIRI;
using PathManagement::IPathEntry;
using PathManagement::PathEntryType;
using Tolvex::AbsoluteIRI;
using Tolvex::FromUtf8;
using Tolvex::ToUtf8;

namespace {

constexpr auto problemKinds = std::to_array<ProblemKind>({
    {"missing", "Missing folders"},
    {"unreadable", "Folders that cannot be read"},
    {"wrong-kind", "Folders that may not stand on a path"},
    {"left-out", "Other folders that were left out"},
    {"several-versions", "Packages in several versions"},
    {"repeated-folder", "Folders named more than once"},
    {"shadowed-name", "Names with hidden files"},
    {"case-clash", "Names that differ only in case"},
    {"not-cacheable", "Names that no path cache file can hold"},
    {"watch-limit", "Limits of change notification"},
});

/// The kinds of the messages about folders that were left out; any other message is of kind "left-out".
constexpr auto kindsOfMessages = std::to_array<std::pair<std::string_view, std::string_view>>({
    {"nameNonexistentOrNotADirectory", "missing"},
    {"directoryPermissionDenied", "unreadable"},
    {"directoryAccessFailure", "unreadable"},
    {"packageDirectoriesNotAllowedOnPath", "wrong-kind"},
    {"methodDirectoriesNotAllowedOnPath", "wrong-kind"},
    {"privateDirectoriesNotAllowedOnPath", "wrong-kind"},
    {"resourcesDirectoriesNotAllowedOnPath", "wrong-kind"},
    {"MultiplePackageVersionsOnPath", "several-versions"},
});

constexpr std::uint64_t nearLimitPercent = 90;
constexpr std::size_t mostHiddenFilesTold = 4; // 'shadows' has them all

PathProblem MakeProblem(const Tolvex::MessageIdentifier& message) {
    const auto* const known =
        std::ranges::find(kindsOfMessages, message.key, &std::pair<std::string_view, std::string_view>::first);
    Tolvex::ustring subject = message.arguments.empty() ? Tolvex::ustring() : message.arguments.front();
    if (message.key == "MultiplePackageVersionsOnPath") // the hidden version, without the quotes of the sentence
        subject = message.arguments.back().substr(1, message.arguments.back().size() - 2);
    return {known == kindsOfMessages.end() ? "left-out" : known->second, std::move(subject),
            Tolvex::GetMessageText(message)};
}

std::string GetFileText(const FoundItem& file) {
    return ToUtf8(GetStringFromIRI(file.GetItem().GetIRI()));
}

class PathChecker {
public:
    PathChecker(PathCheck& check, std::span<const AbsoluteIRI> locations, const Tolvex::Notification& leftOut,
                const NameRules& rules)
        : check(check), locations(locations), leftOut(leftOut), rules(rules) {}

    void Run() {
        constexpr std::array looks{&PathChecker::TellLeftOut,      &PathChecker::TellRepeated,
                                   &PathChecker::TellUnreadable,   &PathChecker::TellNames,
                                   &PathChecker::TellNotCacheable, &PathChecker::TellWatches};
        for (const auto look : looks)
            (this->*look)();
        std::ranges::stable_sort(check.problems, {}, [](const PathProblem& problem) {
            return std::ranges::find(problemKinds, problem.kind, &ProblemKind::name);
        });
    }

private:
    void Tell(std::string_view kind, Tolvex::ustring subject, std::string message) {
        check.problems.push_back({kind, std::move(subject), std::move(message)});
    }

    void AddProblems(const Tolvex::Notification& messages) {
        EachOnce(messages).ForEach([this](const Tolvex::Notification::Entry& entry) {
            check.problems.push_back(MakeProblem(entry.message));
            return false;
        });
    }

    void TellLeftOut() { AddProblems(leftOut); }

    void TellRepeated() {
        for (const auto& [location, first, folder] : FindRepeatedFolders(locations)) {
            const std::string earlier = ToUtf8(GetStringFromIRI(first));
            Tell("repeated-folder", GetStringFromIRI(location),
                 location == first
                     ? "The folder is named before; only its first place counts. Name it once."
                     : fmt::format("The folder is named before as '{}'; only its first place counts. Name it once.",
                                   earlier));
        }
    }

    /// A special folder that cannot be read has an entry without contents. (A main folder has none and was left out.)
    void TellUnreadable() {
        Tolvex::Notification unreadable;
        TellUnreadableBelow(*check.path->GetMainEntries(), unreadable);
        AddProblems(unreadable);
    }

    void TellNames() {
        const NamesOnPath names(*check.path, rules);
        check.conflicts = names.FindConflicts();
        for (const NameConflict& conflict : check.conflicts)
            TellConflict(conflict);
        if (rules.policy == FilenameMatchingPolicy::ignoreCase)
            return; // then they are conflicts and told already
        for (const CaseClash& clash : names.FindCaseClashes())
            TellCaseClash(clash);
    }

    void TellConflict(const NameConflict& conflict) {
        std::string message = fmt::format("'{}' hides", GetFileText(conflict.winner));
        const std::size_t shown = std::min(conflict.hidden.size(), mostHiddenFilesTold);
        for (std::size_t i = 0; i < shown; ++i)
            message += fmt::format("{} '{}'", i == 0 ? "" : ",", GetFileText(conflict.hidden[i]));
        if (shown < conflict.hidden.size())
            message += fmt::format(" and {} more", conflict.hidden.size() - shown);
        Tell("shadowed-name", conflict.name, message + ".");
    }

    void TellCaseClash(const CaseClash& clash) {
        std::string message;
        for (const FoundItem& file : clash.files)
            message += fmt::format("{}'{}'", message.empty() ? "" : ", ", GetFileText(file));
        Tell("case-clash", clash.name,
             message + " differ only in case: where case is ignored, the first hides the others.");
    }

    void TellNotCacheable() {
        constexpr const char* message = "The name holds a double quote, which a path cache file cannot. Rename it, or "
                                        "keep its folder out of the cache.";
        const auto cannotHold = [](Tolvex::ustring_view name) { return name.find(u'"') != name.npos; };
        check.path->ForEachEntry(PathManagement::SearchScope::All(), [&](const auto& entry) {
            if (cannotHold(entry->GetIRI().getBaseName()))
                Tell("not-cacheable", GetStringFromIRI(entry->GetIRI()), message);
            for (const auto& item : *entry->GetPathItems())
                if (cannotHold(item->GetStem()) || cannotHold(item->GetExtension()))
                    Tell("not-cacheable", GetStringFromIRI(item->GetIRI()), message);
            return false;
        });
    }

    /// Watches are set when somebody asks for changes, as an environment does at its first refresh.
    void TellWatches() {
        static_cast<void>(PathManagement::GetPathEntryFactory().GetChangesSince({}));
        const std::string warning = Tolvex::GetFileFolderObserverFactory(storage).takeChangeHandleWarning();
        const KernelWatches watches = CountKernelWatches();
        if (watches.limit != 0 && watches.taken * 100 >= watches.limit * nearLimitPercent)
            Tell("watch-limit", FromUtf8(watches.setting), DescribeLimit(watches));
        else if (!warning.empty())
            Tell("watch-limit", FromUtf8(watches.setting), warning);
    }

    static std::string DescribeLimit(const KernelWatches& watches) {
        return fmt::format("{} of the {} folder watches that the system gives to this user are taken, {} of them for "
                           "this path. Changes of folders without a watch are still found, by looking at each, which "
                           "takes longer. To raise the limit, the administrator runs: sysctl {}=<a higher number>",
                           watches.taken, watches.limit, watches.own, watches.setting);
    }

    PathCheck& check;
    std::span<const AbsoluteIRI> locations;
    const Tolvex::Notification& leftOut;
    const NameRules& rules;
    const Tolvex::StorageSystemReference storage = TolvexStorageSystem::GetStorageSystemReference();
};

} // namespace

std::span<const ProblemKind> GetProblemKinds() {
    return problemKinds;
}

PathCheck CheckPath(std::shared_ptr<const PathManagement::IPath> path, std::span<const AbsoluteIRI> locations,
                    const Tolvex::Notification& leftOut, const NameRules& rules) {
    PathCheck check;
    check.path = std::move(path);
    check.folders = DescribeFolders(*check.path);
    for (const FolderOnPath& folder : check.folders)
        check.fileCount += folder.fileCount;
    PathChecker(check, locations, leftOut, rules).Run();
    return check;
}

} // namespace TolvexPath
