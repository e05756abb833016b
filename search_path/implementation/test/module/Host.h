#pragma once

#include "../../../../foundation/storage/test/TemporaryTree.h"
#include "foundation/components/ModularPackageRegistry.h"
#include "foundation/environment/WorkingFolder.h"
#include "path_interfaces/events/PathChangeEvent.h"
#include "search_path/Accessors.h"
#include "search_path/MainSearchPathManagerFactory.h"

#include <gtest/gtest.h>

#include <fstream>

namespace PathManagement {

namespace fs = std::filesystem;

/// What a host brings: a folder of its own on the disk, in which it works, an event manager and a package registry.
/// Paths are relative to that folder.
class Host {
public:
    Host() { Enter("current"); }
    ~Host() {
        std::error_code ignored;
        fs::current_path("/", ignored);
    }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    [[nodiscard]] fs::path At(const std::string& path) const { return tree.GetRoot() / path; }
    [[nodiscard]] Tolvex::CanonicalAbsoluteIRI Locate(const std::string& path) const {
        return Tolvex::CanonicalAbsoluteIRI(tree.GetIRI(path), {});
    }

    void MakeFolder(const std::string& path) const { fs::create_directories(At(path)); }
    void Write(const std::string& path) const {
        MakeFolder(fs::path(path).parent_path());
        std::ofstream(At(path)) << "text";
    }
    void Remove(const std::string& path) const { fs::remove_all(At(path)); }
    void Rename(const std::string& from, const std::string& to) const { fs::rename(At(from), At(to)); }

    /// Makes the folder where it is missing.
    void Enter(const std::string& folder) {
        MakeFolder(folder);
        Tolvex::ChangeCurrentWorkingFolder(tree.GetIRI(folder), *bus);
    }

    [[nodiscard]] std::unique_ptr<IMainSearchPathManager> CreateManager() {
        return CreateMainSearchPathManager(bus, components);
    }

    /// The keys of the problems.
    std::string Set(IMainSearchPathManager& manager, const std::vector<std::string>& folders) const {
        std::vector<Tolvex::CanonicalAbsoluteIRI> locations;
        for (const std::string& folder : folders)
            locations.push_back(Locate(folder));
        Tolvex::Notification problems;
        manager.SetPathEntries(CanonicalIRIRange(locations), problems);
        std::string keys;
        problems.ForEach([&keys](const auto& problem) { return keys += problem.message.key + ' ', false; });
        return keys;
    }

    /// Which file answers; "-" when none does.
    [[nodiscard]] std::string Find(const IMainSearchPathManager& manager, const std::string& name,
                                   SearchScope scope = SearchScope::All()) const {
        const ustring wanted = Tolvex::FromUtf8(name);
        const auto found = manager.GetPath()->FindFirstInScope(
            scope, SearchTarget(wanted, Tolvex::GetCodeFileExtensions()), FilenameMatchingPolicy::exact);
        return found ? Relative(found->GetItem().GetIRI()) : "-";
    }

    [[nodiscard]] std::string Relative(const Tolvex::AbsoluteIRI& location) const {
        return fs::path(Tolvex::ToUtf8(location.getPath())).lexically_relative(tree.GetRoot());
    }

    boost::shared_ptr<Tolvex::EventMgr> bus = Tolvex::createEventMgr();
    TolvexComponents::ModularPackageRegistry components;

private:
    Tolvex::TemporaryTree tree;
};

} // namespace PathManagement
