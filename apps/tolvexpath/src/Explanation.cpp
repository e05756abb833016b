#include "Explanation.h"

#include "KindNames.h"
#include "QualifiedName.h"

#include "path_utilities/PartialPathname.h"
#include "path_utilities/PathText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <unordered_map>
#include <unordered_set>

namespace TolvexPath {

using PathManagement::FilenameMatcher;
using PathManagement::FoundItem;
using PathManagement::IPath;
using PathManagement::IPathEntry;
using PathManagement::PathEntryType;
using PathManagement::PathItem;
using PathManagement::PathItemVector;
using PathManagement::SearchTarget;
using Tolvex::ToUtf8;
using Tolvex::ustring;
using Tolvex::ustring_view;

namespace {

struct Facts {
    const Question& question;
    const PathItem& item;
    const IPathEntry& entry;
    const Candidate* winner; // null when nothing answers
    ustring_view folders;    // that the name has in front
    bool isAnswer;           // what the path says
    bool isWinner;
    bool wasMetBefore; // the same file: its folder is on the path more than once
    bool isInFolders;
    bool hasStem;
    bool hasExtension;
    bool hasExtensionInOtherCase; // or in the same
};

bool IsBesideWinner(const Facts& facts) {
    return facts.winner->file.GetEntry()->GetIRI() == facts.entry.GetIRI();
}

std::string ListExtensions(const Question& question) {
    std::string list;
    for (const ustring& extension : *question.extensions)
        list.append(list.empty() ? "" : ",").append(ToUtf8(extension));
    return list;
}

/// Packages and classes that are asked for by their names instead of those of their folders.
std::string AdviseOnFolders(const Facts& facts) {
    ustring called(facts.folders);
    std::ranges::replace(called, u'/', u'.');
    if (facts.entry.GetPathEntryType() == PathEntryType::mainFolder || facts.entry.GetDescriptor() != called)
        return {};
    return fmt::format(" but in '{}'", ToUtf8(GetSpecialFolderNames(facts.entry.GetIRI())));
}

struct Rule {
    std::string_view verdict;
    bool (*applies)(const Facts&);
    std::string (*explain)(const Facts&);
};

/// Of what answers: the first that applies. Each stands for those that are not covered by the ones before it.
constexpr std::array rulesForAnswers{
    Rule{"winner", [](const Facts& facts) { return facts.isWinner; },
         [](const Facts&) -> std::string { return "the first that answers"; }},
    Rule{"repeated-folder", [](const Facts& facts) { return facts.wasMetBefore; },
         [](const Facts&) -> std::string { return "its folder stands earlier on the path, too"; }},
    Rule{"less-wanted-extension",
         [](const Facts& facts) {
             return IsBesideWinner(facts) && facts.item.GetExtension() != facts.winner->file.GetItem().GetExtension();
         },
         [](const Facts& facts) {
             return fmt::format("'{}' is less wanted than '{}' in the same folder", ToUtf8(facts.item.GetExtension()),
                                ToUtf8(facts.winner->file.GetItem().GetExtension()));
         }},
    Rule{"later-in-folder", IsBesideWinner,
         [](const Facts&) -> std::string { return "comes behind the winner in the same folder"; }},
    Rule{"hidden", [](const Facts&) { return true; },
         [](const Facts& facts) {
             return fmt::format("hidden by '{}', which stands earlier on the path",
                                ToUtf8(PathManagement::GetStringFromIRI(facts.winner->file.GetItem().GetIRI())));
         }},
};

/// Of what does not answer: all that apply are told, the first is the verdict.
constexpr std::array rulesForOthers{
    Rule{"kind-out-of-scope",
         [](const Facts& facts) { return !facts.question.scope->Contains(facts.entry.GetPathEntryType()); },
         [](const Facts& facts) {
             return fmt::format("folders of kind '{0}' are not asked for (--scope {0})",
                                GetKindName(facts.entry.GetPathEntryType()));
         }},
    Rule{"other-folder", [](const Facts& facts) { return !facts.isInFolders; },
         [](const Facts& facts) {
             return fmt::format("its folder does not end in '{}'{}", ToUtf8(facts.folders), AdviseOnFolders(facts));
         }},
    Rule{"extension-not-wanted", [](const Facts& facts) { return !facts.hasExtensionInOtherCase; },
         [](const Facts& facts) {
             return facts.item.GetExtension().empty()
                        ? fmt::format("a file without extension is not wanted, only {}", ListExtensions(facts.question))
                        : fmt::format("'{0}' is none of the wanted extensions {1} (--ext {0})",
                                      ToUtf8(facts.item.GetExtension()), ListExtensions(facts.question));
         }},
    Rule{"other-case",
         [](const Facts& facts) { return !facts.hasStem || (facts.hasExtensionInOtherCase && !facts.hasExtension); },
         [](const Facts&) -> std::string { return "differs in case (--match ignore-case)"; }},
};

void Judge(Candidate& candidate, const Facts& facts) {
    if (facts.isAnswer) {
        const auto rule = std::ranges::find_if(rulesForAnswers, [&](const Rule& r) { return r.applies(facts); });
        candidate.verdict = rule->verdict;
        candidate.reason = rule->explain(facts);
        return;
    }
    for (const Rule& rule : rulesForOthers) {
        if (!rule.applies(facts))
            continue;
        if (candidate.verdict.empty())
            candidate.verdict = rule.verdict;
        candidate.reason += (candidate.reason.empty() ? "" : "; ") + rule.explain(facts);
    }
    if (candidate.verdict.empty())
        throw std::logic_error("no rule says why '" + ToUtf8(PathManagement::GetStringFromIRI(facts.item.GetIRI())) +
                               "' does not answer");
}

class Explainer {
public:
    Explainer(const IPath& path, const Question& question)
        : path(path), question(question), wanted(SplitWantedName(question.name)),
          folders(PathManagement::SplitPartialPathname(wanted.folders)) {}

    [[nodiscard]] Explanation Run() {
        Gather();
        const SearchTarget target(question.name, *question.extensions);
        for (const FoundItem& answer : path.FindAllInScope(*question.scope, target, *question.policy))
            answers.insert(answer.GetItem().GetIRI());
        if (const auto first = path.FindFirstInScope(*question.scope, target, *question.policy))
            explanation.winner = FindCandidate(first->GetItem().GetIRI());
        for (Candidate& candidate : explanation.candidates)
            JudgeCandidate(candidate);
        return std::move(explanation);
    }

private:
    void Gather() {
        std::unordered_map<Tolvex::AbsoluteIRI, std::size_t, Tolvex::IRIHash> places;
        for (const auto& main : *path.GetMainEntries()) {
            const bool mayStand = main->GetPathEntryType() == PathEntryType::mainFolder;
            const std::size_t place = mayStand ? places.emplace(main->GetIRI(), places.size() + 1).first->second : 0;
            main->ForEachEntry(PathManagement::SearchScope::All(), [&](const std::shared_ptr<const IPathEntry>& entry) {
                GatherIn(entry, place);
                return false;
            });
        }
    }

    /// What the entry says answers comes first, as it does in a search; then the rest in the order of names.
    void GatherIn(const std::shared_ptr<const IPathEntry>& entry, std::size_t place) {
        const SearchTarget target(wanted.stem, *question.extensions);
        PathItemVector accepted;
        for (const auto& item : entry->FindAll(target, *question.policy))
            if (std::ranges::find(accepted, item) == accepted.end()) // one that two extensions fit is given twice
                accepted.push_back(item);
        for (const auto& item : accepted)
            explanation.candidates.push_back({FoundItem(entry, item), place, {}, {}});
        const auto items = entry->GetPathItems();
        const auto named = std::ranges::equal_range(*items, target.GetNormalizedName(), {},
                                                    [](const auto& item) { return item->GetNormalizedStem(); });
        for (const auto& item : named)
            if (std::ranges::find(accepted, item) == accepted.end())
                explanation.candidates.push_back({FoundItem(entry, item), place, {}, {}});
    }

    [[nodiscard]] const Candidate* FindCandidate(const Tolvex::AbsoluteIRI& file) const {
        const auto found = std::ranges::find_if(explanation.candidates, [&file](const Candidate& candidate) {
            return candidate.file.GetItem().GetIRI() == file;
        });
        return found == explanation.candidates.end() ? nullptr : &*found;
    }

    void JudgeCandidate(Candidate& candidate) {
        const IPathEntry& entry = *candidate.file.GetEntry();
        const PathItem& item = candidate.file.GetItem();
        const auto matcher = entry.CreateFilenameMatcher(*question.policy);
        const auto matches = [&matcher](ustring_view a, ustring_view b) { return (*matcher)(ustring(a), ustring(b)); };
        const ustring_view extension = item.GetExtension();
        const ustring foldedExtension = Tolvex::FoldCase(extension);
        const bool wasMetBefore = !met.insert(item.GetIRI()).second;
        Judge(candidate,
              {.question = question,
               .item = item,
               .entry = entry,
               .winner = explanation.winner,
               .folders = wanted.folders,
               .isAnswer = answers.contains(item.GetIRI()),
               .isWinner = &candidate == explanation.winner,
               .wasMetBefore = wasMetBefore,
               .isInFolders = PathManagement::DoesPartialPathnameMatchPathEntryIRI(folders, entry.GetIRI(),
                                                                                   entry.GetPathComparator()),
               .hasStem = matches(item.GetStem(), wanted.stem),
               .hasExtension = std::ranges::any_of(
                   *question.extensions, [&](const ustring& accepted) { return matches(extension, accepted); }),
               .hasExtensionInOtherCase =
                   std::ranges::any_of(*question.extensions, [&foldedExtension](const ustring& accepted) {
                       return Tolvex::FoldCase(accepted) == foldedExtension;
                   })});
    }

    const IPath& path;
    const Question& question;
    const WantedName wanted;
    const PathManagement::PathnameComponents folders;
    std::unordered_set<Tolvex::AbsoluteIRI, Tolvex::IRIHash> answers;
    std::unordered_set<Tolvex::AbsoluteIRI, Tolvex::IRIHash> met;
    Explanation explanation;
};

} // namespace

Explanation Explain(const IPath& path, const Question& question) {
    return Explainer(path, question).Run();
}

} // namespace TolvexPath
