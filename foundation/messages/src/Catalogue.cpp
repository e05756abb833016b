#include "foundation/messages/Catalogue.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace Tolvex {

namespace {

/// One message in English. "{0}" stands for the first argument; a digit is enough, and texts hold no other braces.
struct Text {
    std::string_view component;
    std::string_view key;
    std::size_t argumentCount;
    std::string_view english;
};

constexpr std::string_view path = "TOLVEX:tpath";

constexpr auto catalogue = std::to_array<Text>({
    // Folders that may not stand on the path by themselves: folder.
    {path, "packageDirectoriesNotAllowedOnPath", 1,
     "The folder '{0}' is a package folder and was not put on the path. Put the folder that holds it on the path."},
    {path, "methodDirectoriesNotAllowedOnPath", 1,
     "The folder '{0}' is a class folder and was not put on the path. Put the folder that holds it on the path."},
    {path, "privateDirectoriesNotAllowedOnPath", 1,
     "The folder '{0}' is a private folder and was not put on the path. Put the folder that holds it on the path."},
    {path, "resourcesDirectoriesNotAllowedOnPath", 1,
     "The folder '{0}' is a resources folder and was not put on the path. Choose a folder that holds code files."},

    // Installed packages and the path.
    {path, "packageMemberFoldersNotAllowedOnPath", 3, // folder, package, the package's root folder
     "The folder '{0}' belongs to the package {1} and was not put on the path by itself. To use the package, put its "
     "root folder '{2}' on the path."},
    {path, "uninstalledPackagesNotAllowedOnPath", 1, // folder
     "The folder '{0}' is that of a package that is not installed and was not put on the path. Install the package "
     "first."},
    {path, "packagesMustBeLastOnPath", 0,
     "Folders of installed packages must stand behind all other folders on the path. Move them to the end of the "
     "list."},
    {path, "uninstalledPackageRemovedFromPath", 1, // folder
     "The folder '{0}' was taken off the path because its package is no longer installed. Install the package again to "
     "use it."},
    {path, "packageMemberFolderRemovedFromPath", 3, // folder, what to do instead (may be empty), package
     "The folder '{0}' was taken off the path because it belongs to the package {2}. {1}"},
    {path, "MultiplePackageVersionsOnPath", 2, // the version found first, the others
     "The path holds several versions of one package: {0} is used, {1} is hidden by it. Remove the versions that you "
     "do not need."},
    {path, "AddPackageToPathInfo", 1, // the package's root folder
     "To use the package, put its root folder '{0}' on the path."},
    {path, "packageFolderMonitoringChange", 1, // folder
     "The folder '{0}' belongs to an installed package, which decides by itself how its folders are watched."},
    {"TOLVEX:packages", "unusablePackage", 2, // the file or folder, what is wrong with it
     "A package was left out, since it cannot be used: '{0}', {1}."},
    {"TOLVEX:packages", "packagesNotRead", 2, // the file or folder, what is wrong with it
     "The installed packages could not be read; those on the path stay as they were: '{0}', {1}."},
    {path, "TPMFeatureOff", 0, "The package manager is switched off. Switch it on to ask for installed packages."},

    // The change as a whole.
    {path, "PathAlterationNotSupported", 0,
     "Folders cannot be added to the path or removed from it here. Only their order can be changed."},
    {path, "UnableToModifyTolvexpath", 0,
     "The path could not be changed. If another change of it was under way, try again when that has ended."},
    {"TOLVEX:legacy_two_part", "nomem", 0, "There is not enough memory. Close what you do not need and try again."},

    // Single folders: folder; for an access failure also the system's own words.
    {path, "nameNonexistentOrNotADirectory", 1,
     "The folder '{0}' does not exist or is not a folder. Check how the name is spelled."},
    {path, "directoryPermissionDenied", 1,
     "The folder '{0}' may not be read. Ask its owner for permission to list it."},
    {path, "directoryAccessFailure", 2,
     "The folder '{0}' could not be read: {1}. Check that its drive or network share can be reached."},
    {path, "invalidLocation", 1, "'{0}' is not the name of a folder. Give a folder's path."},

    // Built-in functions.
    {"TOLVEX:arguments", "maxlhs", 0, "Too many outputs. Ask for fewer."},
    {"TOLVEX:arguments", "maxrhs", 0, "Too many inputs. Give fewer."},
    {"TOLVEX:arguments", "minrhs", 0, "Not enough inputs. Give those that the function needs."},
    {"TOLVEX:arguments", "unknownFunction", 1, "There is no built-in function '{0}'. Check how the name is spelled."},
    {"TOLVEX:RemotePolicy", "UnknownPolicy", 0,
     "Unknown policy for remote folders. Use 'Reload', 'TimecheckDir', 'None' or 'Status'."},
    {"TOLVEX:ChangeHandleWarning", "notEnoughInputs", 0,
     "Not enough inputs. Give one option: 'always', 'once', 'never' or 'status'."},
    {"TOLVEX:ChangeHandleWarning", "InvalidOption", 0, "Unknown option. Use 'always', 'once', 'never' or 'status'."},
    {"TOLVEX:string", "MustBeStringScalarOrCharacterVector", 0,
     "The input must be a text: a string scalar or a character row vector."},
    {"TOLVEX:CachePath", "FailedToSave", 2, // the file, or the root folder; why
     "The path cache '{0}' could not be saved; nothing was changed there. Reason: {1}"},
    {"TOLVEX:CachePath", "FailedToLoad", 2, // the file, why
     "The path cache '{0}' could not be loaded; folders are read from the disk instead. Write it again. Reason: {1}"},
    {"TOLVEX:CachePath", "InvalidOption", 0, "Unknown option. Use 'status', 'write', 'load' or 'drop'."},
    {"TOLVEX:CachePath", "InvalidFile", 0, "The name of the path cache must be a text that can name a file."},
    {"TOLVEX:CachePath", "NoCacheFolder", 0,
     "There is no folder for the path cache outside the installation. Set XDG_CACHE_HOME to one, or name a file."},
    {path, "noParentFolder", 1, "'{0}' lies in no folder, so it cannot name a file. Give the location of a file."},
    {path, "invalidInstallationPoint", 0,
     "The point after which packages are listed must be a whole number from 0 on: a number that is exact, or its "
     "digits as text."},
});

const Text* Find(const MessageIdentifier& message) {
    const auto found = std::find_if(catalogue.begin(), catalogue.end(), [&message](const Text& text) {
        return text.key == message.key && text.component == message.component;
    });
    return found == catalogue.end() ? nullptr : &*found;
}

/// "a, b" for the arguments from `first` on.
std::string JoinArguments(const MessageIdentifier& message, std::size_t first) {
    std::string joined;
    for (std::size_t i = first; i < message.arguments.size(); ++i)
        joined += (joined.empty() ? "" : ", ") + ToUtf8(message.arguments[i]);
    return joined;
}

std::string FillIn(std::string_view text, const std::vector<ustring>& arguments) {
    std::string filled;
    for (std::size_t hole = text.find('{'); hole != std::string_view::npos; hole = text.find('{')) {
        filled += text.substr(0, hole);
        filled += ToUtf8(arguments[static_cast<std::size_t>(text[hole + 1] - '0')]);
        text.remove_prefix(hole + 3);
    }
    filled += text;
    filled.erase(filled.find_last_not_of(' ') + 1); // an empty argument may have stood at the end
    return filled;
}

} // namespace

std::string GetMessageText(const MessageIdentifier& message) {
    const Text* const text = Find(message);
    if (text == nullptr || message.arguments.size() < text->argumentCount) {
        const std::string arguments = JoinArguments(message, 0);
        return message.GetFullName() + (arguments.empty() ? "" : ": " + arguments);
    }
    const std::string surplus = JoinArguments(message, text->argumentCount);
    return FillIn(text->english, message.arguments) + (surplus.empty() ? "" : " (" + surplus + ")");
}

ustring GetLocalizedText(const MessageIdentifier& message, const KxLocale& /*locale*/) {
    return FromUtf8(GetMessageText(message));
}

} // namespace Tolvex
