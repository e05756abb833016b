#include "Finder.h"

#include "QualifiedName.h"

#include "path_utilities/PartialPathname.h"
#include "path_utilities/PathItemBlock.h"
#include "path_utilities/PathText.h"

#include <fmt/format.h>

#include <algorithm>

namespace TolvexPath {

using PathManagement::FilenameMatchingPolicy;
using PathManagement::FoundItem;
using PathManagement::PathEntryType;
using PathManagement::SearchScope;
using PathManagement::SearchTarget;
using Tolvex::ustring_view;

namespace {

Question IgnoringCase(Question question) {
    question.policy = FilenameMatchingPolicy::ignoreCase;
    return question;
}

Question InEveryKindOfFolder(Question question) {
    question.scope = SearchScope::All();
    return question;
}

/// How people name a file to most programs, though not to a search.
bool IsPlaceOnDisk(ustring_view name) {
    return name.starts_with(u"/") || name.starts_with(u"./") || name.starts_with(u"../");
}

std::string AdviseAgainstPlace(ustring_view name) {
    const std::size_t separator = name.rfind(u'/');
    const std::string folder = Tolvex::ToUtf8(name.substr(0, std::max<std::size_t>(separator, 1)));
    return fmt::format("a NAME is no place on the disk; name the folder with -p: find '{}' -p '{}'",
                       Tolvex::ToUtf8(name.substr(separator + 1)), folder);
}

} // namespace

WantedName SplitWantedName(ustring_view name) noexcept {
    const std::size_t separator = name.find_last_of(PathManagement::Constants::PathnameSeparatorStr);
    if (separator == ustring_view::npos || separator == 0)
        return {{}, name};
    return {name.substr(0, separator), name.substr(separator + 1)};
}

SearchScope GetUsualScope(ustring_view name) {
    const std::size_t separator = name.find_first_of(PathManagement::Constants::PathnameSeparatorStr);
    const bool isPartialPathname = separator != ustring_view::npos && separator > 0;
    return isPartialPathname ? SearchScope::All() : SearchScope{PathEntryType::mainFolder};
}

Question WithoutExtension(Question question) {
    const auto parts = PathManagement::SplitFileName(SplitWantedName(question.name).stem);
    question.name.resize(question.name.size() - parts.extension.size());
    return question;
}

std::vector<FoundItem> Finder::Answer(const Question& question) const {
    const SearchTarget target(question.name,
                              question.extensions ? std::span(*question.extensions) : std::span(defaults.extensions));
    const FilenameMatchingPolicy policy = question.policy.value_or(defaults.policy);
    const SearchScope scope = question.scope ? *question.scope : defaults.scope.value_or(GetUsualScope(question.name));
    if (question.all.value_or(defaults.all))
        return path->FindAllInScope(scope, target, policy);
    std::vector<FoundItem> found;
    if (auto first = path->FindFirstInScope(scope, target, policy))
        found.push_back(std::move(*first));
    return found;
}

Question Finder::Complete(Question question) const {
    if (!question.extensions)
        question.extensions = defaults.extensions;
    if (!question.policy)
        question.policy = defaults.policy;
    if (!question.scope)
        question.scope = defaults.scope.value_or(GetUsualScope(question.name));
    if (!question.all)
        question.all = defaults.all;
    return question;
}

std::string Finder::ExplainMiss(const Question& question) const {
    struct Relaxation {
        Question question;
        const char* explanation;
    };
    const Relaxation relaxations[] = {
        {WithoutExtension(question), "answers to the name without its extension"},
        {IgnoringCase(question), "differs in case (--match ignore-case finds it)"},
        {InEveryKindOfFolder(question), "lies in another kind of folder (--scope all finds it)"},
    };
    for (const Relaxation& relaxation : relaxations)
        if (const auto found = Answer(relaxation.question); !found.empty())
            return fmt::format("'{}' {}",
                               Tolvex::ToUtf8(PathManagement::GetStringFromIRI(found.front().GetItem().GetIRI())),
                               relaxation.explanation);
    if (const auto qualified = FindQualified(*path, Complete(question)))
        return fmt::format("{}, in '{}'", DescribeQualified(question, *qualified),
                           Tolvex::ToUtf8(PathManagement::GetStringFromIRI(qualified->file.GetItem().GetIRI())));
    return IsPlaceOnDisk(question.name) ? AdviseAgainstPlace(question.name) : "";
}

} // namespace TolvexPath
