#include "Commands.h"
#include "Messages.h"
#include "Output.h"
#include "PackageReport.h"
#include "PackagesFolder.h"
#include "UsageError.h"

#include "foundation/components/PackageStore.h"

#include <CLI/CLI.hpp>
#include <boost/uuid/uuid_io.hpp>
#include <fmt/format.h>

#include <algorithm>

namespace TolvexPath {

using Tolvex::FromUtf8;
using TolvexComponents::ComponentVersion;
using TolvexPackages::ComponentIdentifier;
using TolvexPackages::InstalledPackage;
using TolvexPackages::InstalledPackages;
using TolvexPackages::PackageStore;

namespace {

constexpr const char* help = R"(A package is a folder with a file 'package.json' that says what it is:
  {"name": "signals", "version": "1.4.0", "id": "6f1c9a52-0c7e-4b5e-9d0a-3f6f2a1f8b11",
   "folders": [".", "filters"], "properties": {"PathPosition": "begin"}}
The id tells packages apart; make one with 'uuidgen' and keep it for all versions.
"folders" and "properties" may be left out.

Packages are installed in the folder that --packages names, else the environment
variable TOLVEX_PACKAGES, else in 'tolvex/packages' in the user's data folder. Other
programs may install there at the same time. Other commands put the
packages on the path when their --packages, or the variable, names the folder.

Examples:
  tolvexpath package install downloads/signals
  tolvexpath package install work/signals --in-place
  tolvexpath package list --json
  tolvexpath package update downloads/signals-1.5 --replace 1.4.0
  tolvexpath package remove signals@1.5.0

Exit status: 0 done; 1 no such package is installed, or one of those listed cannot be
used; 2 wrong use, or refused, and nothing was changed.)";

std::string GetID(const InstalledPackage& package) {
    return boost::uuids::to_string(package.manifest.identifier.GetUniqueID());
}

class PackageCommand final : public ICommand {
public:
    [[nodiscard]] std::string GetName() const override { return "package"; }
    [[nodiscard]] std::string GetSummary() const override { return "List, install, update or remove packages"; }
    void DeclareArguments(CLI::App& arguments) override;
    [[nodiscard]] ExitCode Run() override;

private:
    using Packages = std::vector<const InstalledPackage*>;

    CLI::App* DeclareAction(CLI::App& arguments, const char* name, const char* summary,
                            ExitCode (PackageCommand::*run)(PackageStore&) const);
    [[nodiscard]] ExitCode List(PackageStore& store) const;
    [[nodiscard]] ExitCode Install(PackageStore& store) const;
    [[nodiscard]] ExitCode Update(PackageStore& store) const;
    [[nodiscard]] ExitCode Remove(PackageStore& store) const;
    [[nodiscard]] ExitCode Rescan(PackageStore& store) const;
    [[nodiscard]] ExitCode Report(const PackageStore& store, const Packages& packages) const;
    [[nodiscard]] ExitCode ReportAll(const PackageStore& store, const InstalledPackages& installed) const;
    [[nodiscard]] ExitCode ReportOne(const PackageStore& store, const ComponentIdentifier& identifier) const;

    std::vector<std::pair<CLI::App*, ExitCode (PackageCommand::*)(PackageStore&) const>> actions;
    std::string storeFolder;
    std::string folder;
    std::string name;
    std::string replaced;
    std::string id;
    bool inPlace = false;
    bool isDependency = false;
    bool asJson = false;
};

CLI::App* PackageCommand::DeclareAction(CLI::App& arguments, const char* actionName, const char* summary,
                                        ExitCode (PackageCommand::*run)(PackageStore&) const) {
    CLI::App* const action = arguments.add_subcommand(actionName, summary);
    action->add_option("--packages", storeFolder, "The folder of the installed packages")->type_name("FOLDER");
    action->add_flag("--json", asJson, "Write one JSON object with the packages that it is about");
    actions.emplace_back(action, run);
    return action;
}

void PackageCommand::DeclareArguments(CLI::App& arguments) {
    arguments.require_subcommand(1);
    DeclareAction(arguments, "list", "List the packages in the order of their installation", &PackageCommand::List);
    CLI::App* const install =
        DeclareAction(arguments, "install", "Install a copy of a package", &PackageCommand::Install);
    install->add_option("FOLDER", folder, "The package's folder")->type_name("")->required();
    install->add_flag("--in-place", inPlace, "Use the folder where it lies, for whoever works on the package");
    install->add_flag("--dependency", isDependency, "Keep it off the path: another package needs it");
    CLI::App* const update =
        DeclareAction(arguments, "update", "Put a package in the place of an installed one", &PackageCommand::Update);
    update->add_option("FOLDER", folder, "The new package's folder")->type_name("")->required();
    update->add_option("--replace", replaced, "The version to replace, where several are installed")
        ->type_name("VERSION");
    CLI::App* const remove = DeclareAction(arguments, "remove", "Remove a package", &PackageCommand::Remove);
    remove->add_option("PACKAGE", name, "Its name, or its name and version as in signals@1.4.0")
        ->type_name("")
        ->required();
    remove->add_option("--id", id, "Its unique identifier, where different packages share a name")->type_name("UUID");
    DeclareAction(arguments, "rescan", "Record what others have changed in packages, then list them",
                  &PackageCommand::Rescan);
    arguments.footer(help);
}

ExitCode PackageCommand::Run() {
    const auto events = Tolvex::createEventMgr();
    PackageStore store(GetPackagesFolder(storeFolder), TolvexPackages::GetPackageRegistrar(), *events);
    const auto chosen = std::ranges::find_if(actions, [](const auto& action) { return action.first->parsed(); });
    return (this->*chosen->second)(store);
}

ComponentVersion ReadVersion(const std::string& text) {
    if (const auto version = ComponentVersion::fromString(FromUtf8(text)))
        return *version;
    throw UsageError(fmt::format("'{}' is no version such as 1.4.0", text));
}

std::string DescribeChoice(const std::vector<const InstalledPackage*>& packages) {
    const auto getText = [](const InstalledPackage& package) {
        return Tolvex::ToUtf8(TolvexPackages::GetPackageText(package.manifest.identifier));
    };
    const auto describe = [&](const InstalledPackage& package) {
        const bool isOnlyOne =
            std::ranges::count(packages, getText(package), [&](const auto* other) { return getText(*other); }) == 1;
        return fmt::format("'{}'{}", getText(package), isOnlyOne ? "" : " --id " + GetID(package));
    };
    std::string choice;
    for (const auto* const package : packages)
        choice.append(choice.empty() ? "" : " or ").append(describe(*package));
    return choice;
}

ExitCode PackageCommand::Report(const PackageStore& store, const Packages& packages) const {
    Output output;
    if (asJson)
        WritePackagesJson(output, store.GetFolder(), packages);
    else
        ShowPackages(output, packages);
    output.Flush();
    bool isWhole = true;
    for (const auto* const package : packages) {
        if (!package->problem)
            continue;
        PrintMessage(package->problem->GetText());
        isWhole = false;
    }
    return isWhole ? ExitCode::success : ExitCode::notFound;
}

ExitCode PackageCommand::ReportAll(const PackageStore& store, const InstalledPackages& installed) const {
    Packages packages;
    for (const auto& package : installed.Get())
        packages.push_back(&package);
    return Report(store, packages);
}

ExitCode PackageCommand::ReportOne(const PackageStore& store, const ComponentIdentifier& identifier) const {
    const InstalledPackages installed = store.Read();
    Packages packages = installed.Find(identifier.GetName(), identifier.GetVersion());
    std::erase_if(packages, [&](const auto* package) { return package->manifest.identifier != identifier; });
    return Report(store, packages);
}

ExitCode PackageCommand::List(PackageStore& store) const {
    const InstalledPackages installed = store.Read();
    if (installed.Get().empty() && !asJson)
        PrintMessage(fmt::format("no packages are installed in '{}'", store.GetFolder().native()));
    return ReportAll(store, installed);
}

ExitCode PackageCommand::Rescan(PackageStore& store) const {
    return ReportAll(store, store.Rescan());
}

ExitCode PackageCommand::Install(PackageStore& store) const {
    return ReportOne(store, store.Install(folder, {.inPlace = inPlace, .isAskedFor = !isDependency}));
}

ExitCode PackageCommand::Update(PackageStore& store) const {
    const auto version = replaced.empty() ? std::nullopt : std::optional(ReadVersion(replaced));
    return ReportOne(store, store.Update(folder, version));
}

ExitCode PackageCommand::Remove(PackageStore& store) const {
    const std::size_t at = name.find('@');
    const auto version = at == std::string::npos ? std::nullopt : std::optional(ReadVersion(name.substr(at + 1)));
    const InstalledPackages installed = store.Read();
    Packages found = installed.Find(FromUtf8(name.substr(0, at)), version);
    std::erase_if(found, [this](const auto* package) { return !id.empty() && GetID(*package) != id; });
    if (found.empty()) {
        PrintMessage(fmt::format("'{}' is not installed in '{}'; 'package list' shows what is", name,
                                 store.GetFolder().native()));
        return ExitCode::notFound;
    }
    if (found.size() > 1)
        throw UsageError(fmt::format("'{}' may be {}: say which", name, DescribeChoice(found)));
    store.Remove(found.front()->manifest.identifier);
    InstalledPackage removed = *found.front();
    removed.problem.reset(); // nobody needs to cure what is gone
    return Report(store, {&removed});
}

} // namespace

std::unique_ptr<ICommand> CreatePackageCommand() {
    return std::make_unique<PackageCommand>();
}

} // namespace TolvexPath
