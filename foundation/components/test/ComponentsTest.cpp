#include "foundation/components/IPackageRegistrar.h"
#include "foundation/components/ModularPackageRegistry.h"
#include "foundation/components/ModularPackageRegistryHasBeenChanged.h"
#include "foundation/components/PackageRegistry.h"
#include "foundation/components/PackageRegistryHasBeenChanged.h"
#include "foundation/messages/Exceptions.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>

namespace TolvexPackages {
namespace {

using Tolvex::CanonicalAbsoluteIRI;
using Tolvex::EventMgr;
using Tolvex::FromUtf8;
using Tolvex::ToUtf8;
using TolvexComponents::ComponentVersion;
using TolvexComponents::IComponent;
using TolvexComponents::ModularPackageRegistry;

CanonicalAbsoluteIRI At(std::string_view path) {
    return CanonicalAbsoluteIRI::fromCanonical({"memory", FromUtf8(path)});
}

/// Version 1.0.0 of the package that `letter` stands for, unless told otherwise.
ComponentIdentifier Identify(char letter, std::uint32_t version = 1) {
    return {Tolvex::ustring(1, static_cast<char16_t>(letter)),
            ComponentVersion({version, 0, 0}),
            {{static_cast<std::uint8_t>(letter)}}};
}

PackageRecord Record(char letter, const std::vector<std::string>& folders) {
    PackageRecord record{.identifier = Identify(letter)};
    for (const auto& folder : folders)
        record.memberFolders.push_back(At(folder));
    return record;
}

std::shared_ptr<const PackageRegistry> Registry(const std::vector<PackageRecord>& records) {
    IPackageRegistry::Packages packages;
    for (const auto& record : records)
        packages.push_back(std::make_shared<const PackageRecord>(record));
    return std::make_shared<const PackageRegistry>(std::move(packages));
}

std::string Names(std::span<const ComponentIdentifier> identifiers) {
    std::string names;
    for (const auto& identifier : identifiers)
        names += ToUtf8(identifier.GetName());
    return names;
}

TEST(ComponentVersion, IsReadAndWritten) {
    const std::vector<std::pair<std::string, std::string>> versions{
        {"1.2.3", "1.2.3"},       {"1.2", "1.2.0"},
        {"7", "7.0.0"},           {"2.0.0-beta.1", "2.0.0-beta.1"},
        {"1-rc-2", "1.0.0-rc-2"}, {"4294967295", "4294967295.0.0"},
        {"01.0", "1.0.0"}};
    for (const auto& [given, written] : versions) {
        const auto version = ComponentVersion::fromString(FromUtf8(given));
        ASSERT_TRUE(version) << given;
        EXPECT_EQ(ToUtf8(version->toString()), written);
        EXPECT_EQ(ComponentVersion::fromString(version->toString()), version);
    }
    for (const auto* const given : {"", ".", "1.", ".1", "1..2", "1.2.3.4", "-1", "+1", " 1", "1 ", "1.x", "1-", "1- ",
                                    "4294967296", "1.2.3-\xC3\xA4", "v1"})
        EXPECT_FALSE(ComponentVersion::fromString(FromUtf8(given))) << given;
}

TEST(ComponentIdentifier, IsOneVersionOfOneComponentWhateverItsName) {
    const ComponentIdentifier a = Identify('a');
    const ComponentIdentifier renamed{u"other", a.GetVersion(), a.GetUniqueID()};
    EXPECT_EQ(a, renamed);
    EXPECT_EQ(TolvexComponents::ComponentIdentifierHash()(a), TolvexComponents::ComponentIdentifierHash()(renamed));
    EXPECT_FALSE(a == Identify('a', 2));
    EXPECT_FALSE(a == Identify('b'));
    EXPECT_FALSE(a == ComponentIdentifier(u"a", ComponentVersion({1, 0, 0}, u"rc"), a.GetUniqueID()));
}

/// A path of up to four names out of two, so that folders often lie inside each other.
std::string AnyFolder() {
    std::string path;
    for (int depth = *rc::gen::inRange(0, 5); depth > 0; --depth)
        path += *rc::gen::element<std::string>("/a", "/aa");
    return path.empty() ? "/" : path;
}

bool IsSameOrBelow(const std::string& folder, const std::string& above) {
    return above == "/" || folder == above || folder.starts_with(above + '/');
}

// The plain model: among all listed folders that hold the asked one, the longest, of equal ones the first.
RC_GTEST_PROP(PackageRegistry, TheNearestListedFolderTellsTheOwner, ()) {
    struct Listed {
        std::string folder;
        char owner; // '-' for a package that is not installed
    };
    std::vector<Listed> model;
    IPackageRegistry::Packages packages;
    const int count = *rc::gen::inRange(0, 4);
    for (int i = 0; i < count; ++i) {
        const char letter = static_cast<char>('p' + i);
        std::vector<std::string> folders(*rc::gen::inRange<std::size_t>(1, 4));
        for (auto& folder : folders)
            model.push_back({folder = AnyFolder(), letter});
        packages.push_back(std::make_shared<const PackageRecord>(Record(letter, folders)));
    }
    std::vector<CanonicalAbsoluteIRI> uninstalled;
    for (int i = *rc::gen::inRange(0, 3); i > 0; --i) {
        model.push_back({AnyFolder(), '-'});
        uninstalled.push_back(At(model.back().folder));
    }
    const PackageRegistry registry(std::move(packages), uninstalled);

    const std::string asked = AnyFolder();
    const Listed* nearest = nullptr;
    for (const Listed& listed : model) {
        if (IsSameOrBelow(asked, listed.folder) && (!nearest || listed.folder.size() > nearest->folder.size()))
            nearest = &listed;
    }
    const char expected = nearest == nullptr ? ' ' : nearest->owner;
    const auto owner = registry.FindPackageOfFolder(At(asked));
    RC_ASSERT(owner.has_value() == (expected != ' ' && expected != '-'));
    RC_ASSERT(registry.IsFolderOfUninstalledPackage(At(asked)) == (expected == '-'));
    if (owner) {
        RC_ASSERT(*owner == Identify(expected));
        RC_ASSERT(registry.FindPackage(*owner)->identifier == *owner);
    }
}

TEST(PackageRegistry, RefusesWhatNamesNoPackage) {
    EXPECT_THROW(Registry({Record('a', {})}), std::invalid_argument);
    EXPECT_THROW(Registry({Record('a', {"/a"}), Record('a', {"/b"})}), std::invalid_argument);
    EXPECT_THROW(PackageRegistry({nullptr}), std::invalid_argument);
    EXPECT_EQ(PackageRegistry().FindPackage(Identify('a')), nullptr);
    EXPECT_FALSE(PackageRegistry().FindPackageOfFolder({}));
}

TEST(PackageRegistryChanges, TellsWhatCameWentAndDiffers) {
    auto replaced = Record('c', {"/c"});
    auto reordered = Record('d', {"/d", "/d/1", "/d/2"});
    auto both = Record('e', {"/e"});
    const auto before = Registry({Record('a', {"/a"}), Record('b', {"/b"}), replaced, reordered, both});
    replaced.properties.emplace(manualInstallProperty, true);
    std::swap(reordered.memberFolders[1], reordered.memberFolders[2]);
    both.memberFolders.push_back(At("/e/more"));
    both.isWatchedClosely = true;
    const auto after = Registry({both, Record('f', {"/f"}), reordered, replaced, Record('a', {"/a"})});

    const PackageRegistryChanges changes(before, after);
    EXPECT_EQ(Names(changes.GetAdded()), "f");
    EXPECT_EQ(Names(changes.GetRemoved()), "b");
    EXPECT_EQ(Names(changes.GetChanged(PackageChangeKind::folders)), "ed");
    EXPECT_EQ(Names(changes.GetChanged(PackageChangeKind::otherProperties)), "ec");
    EXPECT_EQ(Names(changes.GetChanged(PackageChangeKind::any)), "edc");

    const PackageRegistryChanges none(after, after);
    EXPECT_EQ(Names(none.GetAdded()) + Names(none.GetRemoved()) + Names(none.GetChanged(PackageChangeKind::any)), "");
}

TEST(PackageRegistrar, AnnouncesEachChangeAfterItIsMade) {
    const auto registrar = CreatePackageRegistrar();
    const auto events = Tolvex::createEventMgr();
    const auto first = registrar->GetRegistry();
    EXPECT_TRUE(first->GetPackages().empty());
    const auto second = Registry({Record('a', {"/a"})});

    int announcements = 0;
    const auto connection =
        events->Subscribe<PackageRegistryHasBeenChanged>([&](const PackageRegistryHasBeenChanged& event) {
            EXPECT_EQ(&event.GetChanges()->GetRegistryBefore(), announcements == 0 ? first.get() : second.get());
            EXPECT_EQ(&event.GetChanges()->GetRegistryAfter(), second.get());
            EXPECT_EQ(registrar->GetRegistry(), second);
            EXPECT_EQ(registrar->FindPackageOfFolder(At("/a/b")), Identify('a'));
            ++announcements;
            throw std::runtime_error("the change stands all the same");
        });
    EXPECT_THROW(registrar->ReplaceRegistry(second, *events), std::runtime_error);
    EXPECT_THROW(registrar->ReplaceRegistry(second, *events), std::runtime_error);
    EXPECT_EQ(announcements, 2);
    EXPECT_EQ(registrar->FindPackage(Identify('a'))->GetRootFolder(), At("/a"));
    EXPECT_EQ(&GetPackageRegistrar(), &GetPackageRegistrar());
    EXPECT_EQ(GetPackageRegistrar().FindPackage(Identify('a')), nullptr);
}

class TestComponent : public IComponent {
public:
    TestComponent(char letter, std::string_view folder) : identifier(Identify(letter)), folder(At(folder)) {}
    [[nodiscard]] const ComponentIdentifier& GetIdentifier() const override { return identifier; }
    [[nodiscard]] const CanonicalAbsoluteIRI& GetRootFolder() const override { return folder; }
    [[nodiscard]] std::shared_ptr<const PathManagement::IPath> GetPath() const override { return nullptr; }
    [[nodiscard]] std::shared_ptr<const PathManagement::IPathEntry>
    GetPathEntry(const CanonicalAbsoluteIRI&) const override {
        return nullptr;
    }

private:
    ComponentIdentifier identifier;
    CanonicalAbsoluteIRI folder;
};

TEST(ModularPackageRegistry, KnowsTheInnermostComponentAndAnnouncesChanges) {
    const auto outer = std::make_shared<const TestComponent>('o', "/outer");
    const auto inner = std::make_shared<const TestComponent>('i', "/outer/inner");
    const auto namesake = std::make_shared<const TestComponent>('o', "/elsewhere");
    const auto neighbour = std::make_shared<const TestComponent>('n', "/outer");
    const auto events = Tolvex::createEventMgr();
    ModularPackageRegistry registry;
    int announcements = 0;
    const auto connection = events->Subscribe<TolvexComponents::ModularPackageRegistryHasBeenChanged>([&](const auto&) {
        ++announcements;
        EXPECT_EQ(registry.GetComponent(inner->GetIdentifier()), inner); // the change is made
    });

    EXPECT_FALSE(registry.FindComponentOfFolder(At("/outer")));
    registry.ReplaceComponents({outer, inner}, *events);
    EXPECT_EQ(announcements, 1);
    EXPECT_THROW(registry.ReplaceComponents({namesake, outer}, *events), std::invalid_argument);
    EXPECT_THROW(registry.ReplaceComponents({neighbour, outer}, *events), std::invalid_argument);
    EXPECT_EQ(announcements, 1);
    EXPECT_EQ(registry.FindComponentOfFolder(At("/outer/inner/private")), inner->GetIdentifier());
    EXPECT_EQ(registry.FindComponentOfFolder(At("/outer/innermost")), outer->GetIdentifier());
    EXPECT_FALSE(registry.FindComponentOfFolder(At("/")));

    registry.ReplaceComponents({inner}, *events);
    EXPECT_FALSE(registry.FindComponentOfFolder(At("/outer")));
    EXPECT_THROW(static_cast<void>(registry.GetComponent(outer->GetIdentifier())), Tolvex::InternalException);
}

} // namespace
} // namespace TolvexPackages
