#include <gtest/gtest.h>

#include "Environment/Context.h"
#include "Support/Thrown.h"

using Environment::Variables;

TEST(Variables, ExpandReferencesInnermostFirst) {
    Variables variables;
    for (const auto& [name, value] : {std::pair("b", "c"), {"ac", "d"}, {"deep", "<$(b)>"}, {"self", "$(self)"}})
        variables.Set(name, value);
    struct Case {
        std::string text, kept, removed;
    };
    for (const auto& c :
         {Case{"$(unknown)", "$(unknown)", ""}, Case{"$(a b)", "$(a b)", "$(a b)"}, Case{"x) $(y", "x) $(y", "x) $(y"},
          Case{"$(a$(b))", "d", "d"}, Case{"$(deep)$(b)", "<c>c", "<c>c"},
          Case{"$(unknown) f(x) $(b)", "$(unknown) f(x) c", " f(x) c"}, Case{"$()", "$()", ""}, Case{"", "", ""}}) {
        EXPECT_EQ(variables.Expanded(c.text, false), c.kept);
        EXPECT_EQ(variables.Expanded(c.text, true), c.removed);
    }
    variables.Set("open", "$(b");
    EXPECT_EQ(variables.Expanded("$(open)) $(open)", true), "c $(b") << "a value may begin what the text ends";
    variables.Set("twice", "$(twice)$(twice)");
    for (const char* endless : {"self", "twice"})
        EXPECT_EQ(Support::ThrownText([&] { variables.Expanded("$(" + std::string(endless) + ")", true); }),
                  "The references in $(" + std::string(endless) + ") have no end");
    std::string many, expected;
    for (int i = 0; i < 200000; ++i) {
        many += "$(deep)";
        expected += "<c>";
    }
    EXPECT_TRUE(variables.Expanded(many, true) == expected) << "only references within a value are counted";
    const std::string ends = "azAZ09._-";  // of the ranges that a name may have
    variables.Set(ends, "kept");
    EXPECT_EQ(variables.Expanded("$(" + ends + ")", false), "kept");
    variables["x$(b)"] = "set";
    EXPECT_EQ(variables.GetOrEmpty("xc"), "set");
}

TEST(Variables, AskTheEndOfTheChainAndNeverThemselves) {
    Variables inner, middle, outer;
    inner.SetParent(&middle);
    inner.SetParent(nullptr);
    inner.SetParent(&outer);
    outer.Set("a", "1");
    EXPECT_EQ(inner.GetOrEmpty("a"), "1");
    outer.SetParent(&outer);
    EXPECT_EQ(Support::LocatedText([&] { inner.Exists("b"); }),
              "Assertion (m_pParent != this) failed at NamedStorage::Get in NamedStorage::Get");
}

TEST(Variables, EvaluateExpressions) {
    Variables variables;
    variables.Set("n", "6");
    const std::pair<std::string, std::string> cases[] = {
        {"2+3*4", "14"},
        {"(2+3)*4", "20"},
        {"2-3", "-1"},
        {"1/0", "1/0"},
        {"1%0", "1%0"},
        {"0x10+1", "17"},
        {"3>2", "1"},
        {"3<2", "0"},
        {"-5+2", "-3"},
        {"10-2-3", "5"},
        {"$(n) * 7", "42"},
        {"!0+!7", "1"},
        {"7%4*2", "6"},
        {"2*7%4", "6"},
        {"1|6&2", "3"},
        {"6&2+1", "3"},
        {"5^1", "4"},
        {"2147483647+1", "-2147483648"},
        {"-2147483648/-1", "-2147483648/-1"},
        {"2-(2-3)", "3"},
        {"((1))", "1"},
        {"text", "text"},
        {"(1", "(1"},
        {"1)", "1)"},
        {"", ""},
        {"1+", "1+"},
        {" 1 2 ", "12"},
    };
    for (const auto& [text, result] : cases)
        EXPECT_EQ(variables.Evaluate(text), result) << text;
}

TEST(Context, InnerScopesSeeOuterVariablesAndVanish) {
    Environment::AContext context;
    context.GetGlobal().Set("a", "global");
    context.Push();
    context.GetLocal().Set("b", "local");
    EXPECT_EQ(context.GetLocal().GetOrEmpty("a"), "global");
    EXPECT_FALSE(context.GetGlobal().Exists("b"));
    context.Pop();
    EXPECT_FALSE(context.GetLocal().Exists("b"));
    context.Pop();
    EXPECT_TRUE(context.GetGlobal().Exists("a")) << "the outermost scope stays";
    Environment::AContext other;
    other.Merge(&context);
    other.Merge(nullptr);
    EXPECT_EQ(other.GetGlobal().GetOrEmpty("a"), "global");
}
