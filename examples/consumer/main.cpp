// Which file answers to a name in a list of folders?   consumer NAME FOLDER...
#include "foundation/environment/CodeFiles.h"
#include "foundation/messages/Catalogue.h"
#include "path_utilities/PathText.h"
#include "path_utilities/UniformFolderMonitor.h"
#include "search_path/Accessors.h"

#include <iostream>

using namespace PathManagement;

int main(int count, char** arguments) {
    std::vector<Tolvex::AbsoluteIRI> folders;
    for (int i = 2; i < count; ++i)
        folders.push_back(GetIRIFromString(Tolvex::FromUtf8(arguments[i])));

    Tolvex::Notification problems;
    PathEntryVector entries = GetPathEntryFactory().CreatePathEntries(folders, UniformFolderMonitor(), problems);
    std::erase(entries, nullptr); // what could not be read is told by `problems`
    problems.ForEach(
        [](const auto& problem) { return std::cerr << Tolvex::GetMessageText(problem.message) << '\n', false; });

    const auto path = GetCurrentPathFactory().CreatePath(std::make_shared<const PathEntryVector>(entries), nullptr);
    const SearchTarget target(Tolvex::FromUtf8(count > 1 ? arguments[1] : ""), Tolvex::GetCodeFileExtensions());
    const auto found = path->FindFirstInScope({PathEntryType::mainFolder}, target, FilenameMatchingPolicy::ignoreCase);
    if (!found)
        return 1;
    std::cout << Tolvex::ToUtf8(found->GetItem().GetIRI().getPath()) << '\n';
    return 0;
}
