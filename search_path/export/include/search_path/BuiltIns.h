#pragma once

#include "foundation/arrays/BuiltInTable.h"

#include <array>

/// The functions that a host makes known to its language. All are gateways (TolvexArrays::Gateway says who owns what)
/// and for the interpreter's thread, which is the one that changes the search path.
///
/// Requests for too many outputs, too many inputs and too few inputs raise the standard errors (`error_maxlhs`,
/// `error_maxrhs`, `error_minrhs`), checked in this order and before anything else, but where another error is named.
/// Option words are one text, a row of characters or a string scalar, compared without regard to case; an input that is
/// no text is like an unknown word. A call that raises an error has changed no setting.
namespace PathManagement {

/// previous = FeatureRemotePathPolicy(option): how folders on remote storage are checked for change.
///
/// "Reload", "TimecheckDir" and "None" set the policy (Tolvex::RemotePathPolicy), "Status" leaves it. Any other word
/// raises "TOLVEX:RemotePolicy" `UnknownPolicy`. Gives the word of the policy before the call as characters; nothing
/// when that is none of the three.
KX_EXPORT void FeatureRemotePathPolicy(int outputCount, vxArray* outputs[], int inputCount, vxArray* inputs[]);

/// previous = FeatureDirChangeHandleWarn(option): when the warning about exhausted change handles is shown.
///
/// "always", "once" and "never" set it (Tolvex::ChangeHandleWarning), "status" leaves it. Without an input it raises
/// "TOLVEX:ChangeHandleWarning" `notEnoughInputs`, for any other word `InvalidOption`. Gives the word of the setting
/// before the call as characters; "never" for any value but those of the other two.
KX_EXPORT void FeatureDirChangeHandleWarn(int outputCount, vxArray* outputs[], int inputCount, vxArray* inputs[]);

/// canonical = HiddenCanonicalizepath(path): the one name of a file or folder, which need not exist, as
/// CanonicalizeRelativePathAgainstCWD gives it for the working folder.
///
/// Raises "TOLVEX:string" `MustBeStringScalarOrCharacterVector` for what is not one text, and "TOLVEX:tpath"
/// `invalidLocation` for a text that can name nothing (an empty one). Gives characters for characters, else a string.
KX_EXPORT void HiddenCanonicalizepath(int outputCount, vxArray* outputs[], int inputCount, vxArray* inputs[]);

/// answer = FeatureCachePath(option), answer = FeatureCachePath(option, file): the path cache of the installation.
///
/// "status" (takes no file): a report of lines "name: value": the `file` that is used by default, whether it `exists`,
/// which file this function has `loaded` ("none" also after a drop), how many entries the factory has `kept`.
/// "write": saves what entries are kept of the installation's folders, whole or not at all; gives the file's name.
/// "load": has entries made from the file, until they are known to be out of date; gives the file's name.
/// "drop" (takes no file): forgets what was loaded, whoever loaded it; gives what `loaded` was.
/// All answers are characters.
///
/// The file is a native path, relative to the working folder. By default it lies in "tolvex" below the user's folder
/// for caches (XDG_CACHE_HOME when that is an absolute path, else ".cache" in HOME), made when it is missing; its name
/// holds a hash of the installation folder, so that installations do not share it. It never lies inside the
/// installation. Errors, all of "TOLVEX:CachePath": `InvalidOption`; `InvalidFile` for a file that is no text or
/// cannot name one; `NoCacheFolder` when there is no default and no file is given; `FailedToSave` and `FailedToLoad`,
/// with the file and the reason.
KX_EXPORT void FeatureCachePath(int outputCount, vxArray* outputs[], int inputCount, vxArray* inputs[]);

/// report = FeatureDumpMainSearchPath(): the whole state of the search path for a support request, as characters with
/// line feeds: settings, counters and every entry in path order, with its kind, where its contents came from, how
/// closely it is watched and whether it is out of date. Speaks of the manager that was made last; when that is gone, or
/// none was made, it says so. Looks at folders as a refresh does, but changes no path.
KX_EXPORT void FeatureDumpMainSearchPath(int outputCount, vxArray* outputs[], int inputCount, vxArray* inputs[]);

/// [folders, newest] = GetPathForPackagesInstalledAfter(point): the root folders of the registered packages whose
/// ordering value (PackageRecord::order) is greater than `point`, in ascending order of it, as a column of strings.
/// `newest` is the greatest ordering value of all packages, or `point` when that is greater, as digits: the point to
/// ask for next.
///
/// `point` is a number or a text of digits; numbers are exact up to 2^53. Anything else raises "TOLVEX:tpath"
/// `invalidInstallationPoint`. Raises "TOLVEX:tpath" `TPMFeatureOff` while packages are switched off
/// (TolvexComponents::ComponentFeature).
KX_EXPORT void GetPathForPackagesInstalledAfter(int outputCount, vxArray* outputs[], int inputCount, vxArray* inputs[]);

/// All of them by the names that the language knows them by, to be put in a host's table.
inline constexpr std::array<TolvexArrays::BuiltIn, 6> builtIns{{
    {"FeatureRemotePathPolicy", &FeatureRemotePathPolicy},
    {"FeatureDirChangeHandleWarn", &FeatureDirChangeHandleWarn},
    {"HiddenCanonicalizepath", &HiddenCanonicalizepath},
    {"FeatureCachePath", &FeatureCachePath},
    {"FeatureDumpMainSearchPath", &FeatureDumpMainSearchPath},
    {"GetPathForPackagesInstalledAfter", &GetPathForPackagesInstalledAfter},
}};

} // namespace PathManagement
