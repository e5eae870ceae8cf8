#include <gtest/gtest.h>

#include <memory>
#include <tuple>

#include "CoreStart.h"
#include "Exceptions.h"
#include "Namespace.h"
#include "Value.h"

namespace {

using namespace Core;

/// Counts what is alive, so that a test sees what a namespace deletes.
struct Counted : virtual IInterface {
    Counted() { ++alive; }
    ~Counted() override { --alive; }
    static inline int alive = 0;
};

struct Referenced : virtual IReferenceableObject {
    void AddReference(IDynamicNamespace&) override { ++references; }
    void RemoveReference(IDynamicNamespace&) override { --references; }
    int references = 0;
};

TEST(Namespaces, FindByPlainNestedAbsoluteAndBrokenPaths) {
    Namespace& root = Namespace::Get();
    auto* top = new Value(1);
    auto* deep = new Value(2);
    ASSERT_TRUE(root.Add("TestTop", top));
    ASSERT_TRUE(root.Add(".TestTree.a_1.leaf", deep));
    auto* tree = dynamic_cast<INamespace*>(root.Find("TestTree"));
    ASSERT_NE(tree, nullptr);
    // Names don't reach upwards; a value has nothing below it; no part of a name is enough; what stands behind a name
    // starts at the root again.
    // clang-format off
    const std::tuple<INamespace*, const char*, IInterface*> cases[] = {
        {&root, "TestTop", top}, {&root, "TestTree.a_1.leaf", deep}, {tree, "a_1.leaf", deep}, {tree, ".TestTop", top},
        {tree, "..TestTree.a_1.leaf", deep}, {tree, "TestTop", nullptr}, {&root, "", nullptr}, {&root, ".", nullptr},
        {&root, "TestTop.more", nullptr}, {&root, "TestTop.", top}, {&root, "TestTree.b.leaf", nullptr},
        {&root, "TestTree.a", nullptr}, {&root, "TestTree-TestTop", top}};
    // clang-format on
    for (const auto& [from, path, expected] : cases)
        EXPECT_EQ(from->Find(path), expected) << path;

    std::string rest = "a-1.b";
    EXPECT_EQ(root.CutName(rest), "a");
    EXPECT_EQ(rest, "-1.b");
    EXPECT_EQ(root.TakeName("a_1.b", rest), "a_1");
    EXPECT_EQ(rest, "b");

    EXPECT_FALSE(root.Add("TestTop.below", top)) << "a value can't hold others";
    EXPECT_FALSE(root.Add("", top) || root.Add(".", top));
    EXPECT_TRUE(root.Remove(".TestTree.a_1.leaf"));
    EXPECT_FALSE(root.Remove("TestTree.a_1.leaf") || root.Remove("nothing.there") || root.Remove(""));
    delete deep;
    for (const char* name : {"TestTree", "TestTop"}) {
        const std::unique_ptr<IInterface> removed(root.Find(name));
        EXPECT_TRUE(root.Remove(removed.get()));
    }
}

TEST(Namespaces, OwnWhatStandsInThemAndGiveBackWhatIsRemoved) {
    Referenced referenced;
    auto held = std::make_unique<Value>();
    {
        Namespace space;
        space.Add("one", new Counted);
        space.Add("nested.two", new Counted);
        auto* twice = new Counted;
        space.Add("three", twice);
        space.Add("four", twice);
        EXPECT_EQ(Counted::alive, 3);
        space.Add("one", new Counted);
        EXPECT_EQ(Counted::alive, 3) << "what is replaced is deleted";

        const std::unique_ptr<IInterface> removed(space.Find("nested.two"));
        EXPECT_TRUE(space.Remove("nested.two"));
        EXPECT_EQ(Counted::alive, 3) << "what is removed is not";

        space.Add("reference", &referenced);
        EXPECT_EQ(referenced.references, 1);
        space.Add("reference", &referenced);
        EXPECT_EQ(referenced.references, 1) << "the same object again changes nothing";
        EXPECT_TRUE(space.Remove(&referenced));
        EXPECT_EQ(referenced.references, 0);
        space.Add("reference", &referenced);

        held->Set(new TypedValue<int>(5));
        space.Add("value", held->Get());
        EXPECT_THROW(space.Add("null", nullptr), Utilities::Exception);
        EXPECT_THROW(space.Add("self", &space), Utilities::Exception);
    }
    EXPECT_EQ(Counted::alive, 0);
    EXPECT_EQ(referenced.references, 0);
    EXPECT_EQ(held->GetRef<int>(), 5) << "a value lives as long as a handle holds it";
}

TEST(Namespaces, KnowTheirParentsUntilEitherSideGoes) {
    auto* child = new Namespace;
    auto parent = std::make_unique<Namespace>();
    {
        Namespace second;
        EXPECT_FALSE(child->Attach(second, "a.b")) << "an object attaches under one name";
        EXPECT_TRUE(child->Attach(second, "x"));
        child->Detach(second);
        EXPECT_FALSE(second.Exists("x"));
        EXPECT_TRUE(child->Attach(second, "y"));
        second.Remove("y");
        EXPECT_EQ(child->GetParent(), nullptr);
    }
    EXPECT_TRUE(child->Attach(*parent, "old"));
    EXPECT_TRUE(child->Attach(*parent, "new"));
    EXPECT_FALSE(parent->Exists("old"));
    EXPECT_EQ(child->GetParent(), parent.get());
    delete child;
    EXPECT_FALSE(parent->Exists("new")) << "an object takes itself out of its namespaces";

    child = new Namespace;
    child->Attach(*parent, "again");
    parent->Add("again", new Counted);
    EXPECT_EQ(Counted::alive, 1) << "the attached object made way and is gone";
    parent.reset();
    EXPECT_EQ(Counted::alive, 0);
}

TEST(Namespaces, WalkTheirObjectsInByteOrderUntilTheVisitorStops) {
    Namespace space;
    for (const char* path : {"b", "a.z", "a.Y", "c"})
        space.Add(path, new Value(1));
    std::string seen;
    EXPECT_TRUE(space.Enumerate([&](const std::string& path, IInterface*) { return seen += path + " ", true; }, "top"));
    EXPECT_EQ(seen, "top.a top.a.Y top.a.z top.b top.c ");
    seen.clear();
    const auto stopping = [&](const std::string& path, IInterface*) { return seen += path + " ", path != "a.Y"; };
    EXPECT_FALSE(space.Enumerate(stopping, ""));
    EXPECT_EQ(seen, "a a.Y ");
}

TEST(ValueReferences, InTemplatesAreExpandedFromTheLastToTheFirst) {
    Start();
    Namespace& root = Namespace::Get();
    auto space = std::make_unique<Namespace>();
    space->Attach(root, "Test");
    space->Add("number", new Value(42));
    space->Add("empty", new Value);
    space->Add("plain", new TypedValue<std::string>("text"));
    space->Add("number2", new Value("$(Test.number)"));
    space->Add("part", new Value("number"));
    const std::pair<const char*, const char*> cases[] = {
        // clang-format off
        {"$(Test.number)", "42"}, {"a$(Test.number)b$(Test.plain)c", "a42btextc"}, {"[$(Test.empty)]", "[]"},
        {"$(No.Such.Value) ${1}", "$(No.Such.Value) ${1}"},
        // A namespace is no value.
        {"$(Test)", "$(Test)"}, {"$(Services)", "$(Services)"},
        // No closing parenthesis: the name runs to the end. The inner one first, then the name "42".
        {"x $(Test.number", "x 42"}, {"$($(Test.number)", "$(42"},
        // The inner one completes the outer one; what was put in is not searched again.
        {"$(Test.$(Test.part))", "42"}, {"$(Test.number2)", "$(Test.number)"},
        {"$(.Test.number)$()$", "42$()$"}, {"$$(Test.number)", "$42"}, {"$(", "$("}};
    // clang-format on
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(Common::Format(text).Text(), expected) << text;
    EXPECT_EQ((Common::Format("${1}") % "$(Test.number)").Text(), "$(Test.number)") << "arguments are not expanded";
    TypedValue<int> number;
    EXPECT_TRUE(number.FromString("$(Test.number)"));
    EXPECT_EQ(number.GetRef(), 42);
}

}  // namespace
