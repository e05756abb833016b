#include "foundation/storage/CanonicalAbsoluteIRI.h"
#include "foundation/storage/PathComparator.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <stdexcept>

namespace Tolvex {
namespace {

/// Paths of code units that matter: separators, dots, characters to escape, every sort of surrogate.
rc::Gen<ustring> GenPath() {
    const auto special = rc::gen::elementOf(
        ustring(u"//..ab %?#é\u0085\uE000\uFDD0\uFFFE\xD800\xDBFF\xDC80\xDCC3\xDCA9\xDCFF\xDC00\xDFFF"));
    const auto unit = rc::gen::weightedOneOf<char16_t>(
        {{3, special},
         {1, rc::gen::map(rc::gen::inRange(1, 0x10000), [](int u) { return static_cast<char16_t>(u); })}});
    return rc::gen::map(rc::gen::container<ustring>(unit), [](const ustring& tail) { return u"/" + tail; });
}

RC_GTEST_PROP(AbsoluteIRI, AnyPathSurvivesTheRoundTripThroughText, ()) {
    const AbsoluteIRI iri("memory", *GenPath());
    const auto back = AbsoluteIRI::fromString(iri.toString());
    RC_ASSERT(back.has_value());
    RC_ASSERT(*back == iri);
    RC_ASSERT(back->hashValue() == iri.hashValue());
}

RC_GTEST_PROP(AbsoluteIRI, RelativePathsLeadBackFromTheirRoots, ()) {
    const AbsoluteIRI iri("file", *GenPath());
    const AbsoluteIRI sibling("file", ustring(iri.getPath()) + u"x");
    RC_ASSERT(!iri.isAncestorOf(iri));
    RC_ASSERT(iri.makePathRelativeTo(iri) == ustring());
    for (auto root = iri; root.hasParent();) {
        root = root.getParent();
        const auto relative = iri.makePathRelativeTo(root);
        RC_ASSERT(relative.has_value());
        RC_ASSERT(AbsoluteIRI("file", ustring(root.getPath()) + u"/" + *relative) == iri);
        RC_ASSERT(root.isAncestorOf(iri));
        RC_ASSERT(!iri.isAncestorOf(root));
    }
    const bool isRoot = !iri.hasParent();
    RC_ASSERT(isRoot == iri.isAncestorOf(sibling));
}

TEST(AbsoluteIRI, EscapesWhatAnIRIMayNotHold) {
    const std::pair<ustring, ustring> cases[] = {
        {u"/", u"file:///"},
        {u"//a///b/", u"file:///a/b"},
        {u"/a/./../b", u"file:///a/./../b"},
        {u"/a b&<\"\n%", u"file:///a%20b&%3C%22%0A%25"},
        {u"/straße/\U0001F600", u"file:///straße/\U0001F600"},
        {u"/caf\xDCE9.kx", u"file:///caf%E9.kx"},
    };
    for (const auto& [path, text] : cases)
        EXPECT_EQ(AbsoluteIRI("file", path).toString(), text) << ToUtf8(path);
    EXPECT_EQ(AbsoluteIRI::fromString(u"FILE:///%63%c3%A9")->getPath(), u"/cé");
}

TEST(AbsoluteIRI, TextsThatAreNoIRIGiveNoValue) {
    for (const auto* text :
         {u"", u"/a", u"file:/a", u"file://host/a", u"file://", u"://x", u"1x:///a", u"file:///a b", u"file:///a?b",
          u"file:///a#b", u"file:///%", u"file:///%4", u"file:///%4g", u"file:///%00", u"file:///a%2Fb", u"fi le:///a"})
        EXPECT_FALSE(AbsoluteIRI::fromString(text)) << ToUtf8(text);
    EXPECT_THROW(AbsoluteIRI("file", u"a"), std::invalid_argument);
    EXPECT_THROW(AbsoluteIRI("file", u""), std::invalid_argument);
    EXPECT_THROW(AbsoluteIRI("file", ustring(u"/a\0b", 4)), std::invalid_argument);
    EXPECT_THROW(AbsoluteIRI("a/b", u"/"), std::invalid_argument);
}

TEST(AbsoluteIRI, RootAndEmptyIRIAreLimits) {
    const AbsoluteIRI root("file", u"/");
    EXPECT_FALSE(root.hasParent());
    EXPECT_EQ(root.getBaseName(), u"");
    EXPECT_EQ(root.getChild(u"a").getPath(), u"/a");
    EXPECT_EQ(root.getChild(u"a").getParent(), root);
    EXPECT_TRUE(root.isAncestorOf(root.getChild(u"a")));
    EXPECT_FALSE(AbsoluteIRI("memory", u"/").isAncestorOf(root.getChild(u"a")));
    EXPECT_FALSE(AbsoluteIRI().isAncestorOf(root.getChild(u"a")));
    EXPECT_EQ(AbsoluteIRI().toString(), u"");
    EXPECT_NE(AbsoluteIRI(), root);
    EXPECT_DEATH(static_cast<void>(root.getParent()), "parent");
    EXPECT_DEATH(static_cast<void>(root.getChild(u"a/b")), "child");
}

TEST(CanonicalAbsoluteIRI, CleansOtherSchemesByText) {
    const AbsoluteIRI base("memory", u"/a/./b/../c");
    EXPECT_EQ(CanonicalAbsoluteIRI(base, u"").getPath(), u"/a/c");
    EXPECT_EQ(CanonicalAbsoluteIRI(base, u"../d/").getPath(), u"/a/d");
    EXPECT_EQ(CanonicalAbsoluteIRI(base, u"../../../..").getPath(), u"/");
    EXPECT_TRUE(CanonicalAbsoluteIRI(AbsoluteIRI(), u"").isEmpty());
}

TEST(PathComparator, FollowsTheModifierAndTheFileSystem) {
    for (const bool ignoresCase : {false, true}) {
        const PathComparator compare(ignoresCase);
        EXPECT_EQ(compare(u"Größe", u"gRÖSSE", CaseModifier::ignoreCase), false); // full folding is not asked for
        EXPECT_EQ(compare(u"Größe", u"gRÖßE", CaseModifier::ignoreCase), true);
        EXPECT_EQ(compare(u"Größe", u"gRÖßE", CaseModifier::exact), false);
        EXPECT_EQ(compare(u"Größe", u"gRÖßE", CaseModifier::fileSystemRule), ignoresCase);
        EXPECT_TRUE(compare(u"a", u"a", CaseModifier::fileSystemRule));
    }
    EXPECT_DEATH(static_cast<void>(PathComparator()(u"a", u"A", static_cast<CaseModifier>(3))), "modifiers");
}

} // namespace
} // namespace Tolvex
