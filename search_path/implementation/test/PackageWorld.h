#pragma once

#include "foundation/components/PackageRegistry.h"
#include "foundation/components/PackageRegistryChanges.h"
#include "foundation/messages/Notification.h"
#include "foundation/storage/MemoryStorage.h"

#include <sstream>
#include <string>
#include <vector>

namespace PathManagement {

/// Packages written down in one line: the letter of the name with the version, the folders with the root folder first,
/// then in any order "local" (not managed), "forPath", "manual", "notManual", "at=PathPosition", "#order", "watched".
struct DrawnPackage {
    std::string name; // "a1" is version 1.0.0 of the package a
    std::vector<std::string> folders;
    bool isLocal = false;
    bool isForPath = false;
    bool isWatched = false;
    std::string manualInstall; // the word, or empty
    std::string position;
    std::uint64_t order = 0;

    static DrawnPackage Parse(const std::string& line) {
        std::istringstream words(line);
        DrawnPackage package;
        words >> package.name;
        for (std::string word; words >> word;)
            package.Take(word);
        return package;
    }

    [[nodiscard]] TolvexComponents::ComponentIdentifier GetIdentifier() const {
        return {Tolvex::FromUtf8(name.substr(0, 1)),
                TolvexComponents::ComponentVersion({static_cast<std::uint32_t>(std::stoul(name.substr(1))), 0, 0}),
                {{static_cast<std::uint8_t>(name[0])}}};
    }

    [[nodiscard]] std::shared_ptr<const TolvexPackages::PackageRecord> MakeRecord() const {
        auto record =
            std::make_shared<TolvexPackages::PackageRecord>(TolvexPackages::PackageRecord{.identifier = GetIdentifier(),
                                                                                          .isManaged = !isLocal,
                                                                                          .isForPath = isForPath,
                                                                                          .isWatchedClosely = isWatched,
                                                                                          .order = order});
        for (const auto& folder : folders)
            record->memberFolders.push_back(
                Tolvex::CanonicalAbsoluteIRI::fromCanonical(Tolvex::MemoryStorage::GetIRI(folder)));
        if (!manualInstall.empty())
            record->properties.emplace(TolvexPackages::manualInstallProperty, manualInstall == "manual");
        if (!position.empty())
            record->properties.emplace(TolvexPackages::pathPositionProperty, Tolvex::FromUtf8(position));
        return record;
    }

    bool operator==(const DrawnPackage&) const = default;

private:
    void Take(const std::string& word) {
        if (word.starts_with('/'))
            folders.push_back(word);
        else if (word.starts_with('#'))
            order = std::stoull(word.substr(1));
        else if (word.starts_with("at="))
            position = word.substr(3);
        else if (word.ends_with("anual"))
            manualInstall = word;
        isLocal = isLocal || word == "local";
        isForPath = isForPath || word == "forPath";
        isWatched = isWatched || word == "watched";
    }
};

inline std::shared_ptr<const TolvexPackages::PackageRegistry> MakeRegistry(const std::vector<DrawnPackage>& drawn) {
    TolvexPackages::IPackageRegistry::Packages packages;
    for (const auto& package : drawn)
        packages.push_back(package.MakeRecord());
    return std::make_shared<const TolvexPackages::PackageRegistry>(std::move(packages));
}

inline std::shared_ptr<const TolvexPackages::PackageRegistry> MakeRegistry(const std::vector<std::string>& lines) {
    std::vector<DrawnPackage> packages;
    for (const auto& line : lines)
        packages.push_back(DrawnPackage::Parse(line));
    return MakeRegistry(packages);
}

/// "key(argument; argument)" of each message.
inline std::vector<std::string> DrawMessages(const Tolvex::Notification& notification) {
    std::vector<std::string> drawn;
    notification.ForEach([&drawn](const Tolvex::Notification::Entry& entry) {
        std::string arguments;
        for (const auto& argument : entry.message.arguments)
            arguments += (&argument == entry.message.arguments.data() ? "" : "; ") + Tolvex::ToUtf8(argument);
        drawn.push_back(entry.message.key + "(" + arguments + ")");
        return false;
    });
    return drawn;
}

} // namespace PathManagement
