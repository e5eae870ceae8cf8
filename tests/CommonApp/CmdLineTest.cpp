#include <gtest/gtest.h>

#include <limits>

#include "CmdLine/CmdLine.h"
#include "Support/Thrown.h"

using namespace CmdLine;
using Support::ThrownText;

namespace {

TokenList Tokens(std::initializer_list<const char*> texts) {
    return {texts.begin(), texts.end()};
}

/// The flow object of these tests: notes each call.
struct Flows {
    virtual ~Flows() = default;
    void Add(const std::string& text) { calls += text + ";"; }
    virtual void Update() { Add("update"); }
    virtual void SetNumber(int value) { Add("int " + std::to_string(value)); }
    void SetReal(double value) { Add("real " + std::to_string(value)); }
    void SetText(std::string value) { Add("text " + value); }
    bool SetTwice(const std::string& value) { return Add("twice " + value), true; }
    void WithList(const Key::ArgumentList& arguments) {
        Add("list " + std::to_string(std::any_cast<int>(arguments.at(0)->GetValue())));
    }
    std::string calls;
};

struct WebFlows : Flows {
    void Update() override { Add("web update"); }
    void SetNumber(int value) override { Add("web int " + std::to_string(value)); }
};

struct Keys : testing::Test {
    std::string Line(const std::string& line) {
        left = Tokenize(line);
        flows.calls.clear();
        const auto failure = ThrownText([&] { parser.Parse(left); });
        return failure == "nothing thrown" ? flows.calls : failure;
    }
    Flows flows;
    Parser parser;
    TokenList left;
};

}  // namespace

TEST(Tokens, AreSplitAtThreeSeparatorsAndKeptByQuotes) {
    const std::pair<std::string, TokenList> cases[] = {
        {"  a  \"b c\"d  \"\"  ", {"a", "b cd"}},
        {"\ta\nb\rc", {"a", "b\rc"}},
        {"x\"y z", {"xy z"}},
        {"a\"\"b \"\"\"q r\"", {"ab", "q r"}},
        {std::string("a\0b \xC3\xA9", 6), {std::string("a\0b", 3), "\xC3\xA9"}},
        {"", {}},
    };
    for (const auto& [line, tokens] : cases)
        EXPECT_EQ(Tokenize(line), tokens) << line;
    EXPECT_EQ(JoinTokens({"-a", "b c", "", "d"}), "-a \"b c\" d");
    EXPECT_EQ(JoinTokens({}), "");
}

TEST(Wildcards, MatchAndGiveWhatTheyTook) {
    struct Case {
        std::string pattern, text;
        bool matches;
        std::string captures;
    };
    const Case cases[] = {
        {"-trace=*,*", "-TRACE=a,b", true, "a|b"},
        {"-trace=*,*", "-trace=a,b,c", true, "a|b,c"},
        {"-trace=*,*", "-trace=,b", true, "b"},
        {"-trace=*,*", "-trace=a", false, ""},
        {"-log=*", "-LOG=Five", true, "Five"},
        {"-log=*", "-log=", true, ""},
        {"-Log", "-lOG", true, ""},
        {"-?", "-h", true, "h"},
        {"-?", "-", false, ""},
        {"-?", "-hh", false, ""},
        {"/\\?", "/?", true, ""},
        {"/\\?", "/h", false, ""},
        {"a*b*c", "axbxbyc", true, "x|xby"},
        {"*aab", "aaaab", true, "aa"},
        {"*/Command", "./Root/Command", true, "./Root"},
        {"n#x&", "n123xF", true, "123|F"},
        {"n#", "n", false, ""},
        {"n#", "nx", false, ""},
        {"a b", "a\tb", true, "\t"},
        {"a**", "a", true, ""},
        {"", "", true, ""},
        {"\\", "\\", true, ""},
        {"?", "\xC3", true, "\xC3"},
    };
    for (const auto& c : cases) {
        std::string text = c.text;
        EXPECT_EQ(WildcardMatch(c.pattern, text, '|'), c.matches) << c.pattern << " " << c.text;
        EXPECT_EQ(text, c.matches ? c.captures : c.text) << c.pattern << " " << c.text;
    }
}

TEST_F(Keys, RunInTableOrderAndOncePerOccurrence) {
    parser.AddKey(MakeKey<Flows>("-a", &flows).WithArgument<int>(&Flows::SetNumber));
    parser.AddKey(MakeKey<Flows>("-b", &flows).WithArgument<std::string>(&Flows::SetText));
    parser.AddKey(MakeKey<Flows>("-go", &flows, &Flows::Update));
    EXPECT_EQ(Line("-go -b 1 -a 2 rest -A 3"), "int 2;int 3;text 1;update;");
    EXPECT_EQ(left, Tokens({"rest"}));
    EXPECT_EQ(Line(""), "");
    EXPECT_EQ(Line("-b x -a"), "int 0;text x;") << "a last key reads the empty text while other tokens are there";
}

TEST_F(Keys, CallOverridesThroughMembersOfTheBase) {
    WebFlows web;
    parser.AddKey(MakeKey<Flows>("-go", &web, &Flows::Update));
    parser.AddKey(MakeKey<WebFlows>("-n=*", &web).WithArgument<int>(&Flows::SetNumber));
    parser.AddKey(MakeKey<WebFlows>("-s", &web).WithArgument<std::string>(&Flows::SetTwice));
    Line("-s \"x y\" -n=5 -go");
    EXPECT_EQ(web.calls, "web update;web int 5;twice x y;");
}

TEST_F(Keys, LoadAllArgumentsBeforeTheHandlerAndKeepEarlierSettersOfAFailure) {
    parser.AddKey(MakeKey<Flows>("-m", &flows, &Flows::WithList)
                      .WithArgument<int>(&Flows::SetNumber)
                      .WithArgument<double>(&Flows::SetReal));
    EXPECT_EQ(Line("-m 1 2.5"), "int 1;real 2.500000;list 1;");
    EXPECT_EQ(Line("x -m 1 zwei"), "invalid usage of key <zwei>: 'zwei' is unexpected.");
    EXPECT_EQ(flows.calls, "int 1;");
    EXPECT_EQ(left, Tokens({"x"}));
}

TEST_F(Keys, SayWhatIsWrongWithALine) {
    parser.AddKey(MakeKey<Flows>("-n", &flows).WithArgument<int>(&Flows::SetNumber));
    parser.AddKey(MakeKey<Flows>("-key=*", &flows).WithArgument<int>(&Flows::SetNumber));
    parser.AddKey(MakeKey<Flows>("-must", &flows, &Flows::Update).Mandatory());
    const std::pair<std::string, std::string> cases[] = {
        {"-n", "invalid usage of key <-n>: argument is missing."},
        {"-key=", "invalid usage of key <-key=>: argument is missing."},
        {"-n 12abc", "invalid usage of key <12abc>: '12abc' is unexpected."},
        {"other", "mandatory key <-must> was not specified."},
        {"-n 1", "int 1;"},  // no token is left when the mandatory key's turn comes
        {"-must -key=", "int 0;update;"},
        {"first -must -n ${2}", "invalid usage of key <${2}>: '${2}' is unexpected."},
    };
    for (const auto& [line, expected] : cases)
        EXPECT_EQ(Line(line), expected) << line;
}

TEST_F(Keys, ReportTheTokenThatStoodFirstWhenAnArgumentIsMissing) {
    parser.AddKey(MakeKey<Flows>("-n", &flows).WithArgument<int>(&Flows::SetNumber));
    EXPECT_EQ(Line("-n 1 -n"), "invalid usage of key <-n>: argument is missing.");
    EXPECT_EQ(flows.calls, "int 1;");
}

TEST_F(Keys, OfTheSameNameReplaceEachOtherInPlace) {
    parser.AddKey(MakeKey<Flows>("-a", &flows).WithArgument<int>(&Flows::SetNumber));
    parser.AddKey(MakeKey<Flows>("-b", &flows).WithArgument<int>(&Flows::SetNumber));
    parser.AddKey(MakeKey<Flows>("-a", &flows).WithArgument<std::string>(&Flows::SetText));
    EXPECT_EQ(Line("-b 1 -a 2"), "text 2;int 1;");
    parser.AddKey(MakeKey<Flows>("-A", &flows, &Flows::Update), true);
    EXPECT_EQ(Line("-a 1 -b 2"), "update;int 2;") << "names are compared byte for byte";
    parser.Clear();
    EXPECT_EQ(Line("-a"), "");
}

TEST_F(Keys, OfWildcardsAloneEnd) {
    parser.AddKey(MakeKey<Flows>("*", &flows, &Flows::Update));
    EXPECT_NE(Line("ab"), "");
    EXPECT_EQ(left, Tokens({"ab"}));
}

TEST_F(Keys, MayChangeTheTableWhileItRuns) {
    struct Closing : Flows {
        explicit Closing(Parser& table) : parser(table) {}
        void Update() override { parser.Clear(); }
        Parser& parser;
    } closing(parser);
    parser.AddKey(MakeKey<Flows>("-close", &closing, &Flows::Update));
    parser.AddKey(MakeKey<Flows>("-b", &flows, &Flows::Update));
    EXPECT_EQ(Line("-close -b"), "update;");
    EXPECT_EQ(Line("-b"), "");
}

TEST_F(Keys, WithDataFillStringsOfTheCaller) {
    std::string from = "old", to = "old";
    parser.AddKey(MakeDataKey("/format").WithData(&from).WithData(&to));
    Line("/format a.txt");
    EXPECT_EQ(from + "," + to, "a.txt,");
}

TEST_F(Keys, LeaveStrictParsersWithAnError) {
    Parser strict(Parser::Leftovers::Refused);
    strict.AddKey(MakeKey<Flows>("-go", &flows, &Flows::Update));
    EXPECT_EQ(ThrownText([&] { strict.Parse("-go x \"y z\""); }), "unrecognized arguments found: x \"y z\"");
    std::string texts[] = {"a b", "-go"};
    char* argv[] = {texts[0].data(), texts[1].data()};
    EXPECT_EQ(ThrownText([&] { strict.Parse(2, argv); }), "unrecognized arguments found: \"a b\"");
    EXPECT_EQ(flows.calls, "update;update;");
    EXPECT_EQ(ThrownText([&] { strict.Parse("-go"); }), "nothing thrown");
}

TEST(Numbers, ConvertAsAStreamExtractsThem) {
    EXPECT_EQ(ConvertToken<int>("-17"), -17);
    EXPECT_EQ(ConvertToken<int>("+3"), 3);
    EXPECT_EQ(ConvertToken<int>(""), 0);
    EXPECT_EQ(ConvertToken<int>("99999999999"), std::numeric_limits<int>::max());
    EXPECT_EQ(ConvertToken<unsigned long long>("18446744073709551615"), ~0ull);
    EXPECT_EQ(ConvertToken<double>("1e-3"), 0.001);
    EXPECT_EQ(ConvertToken<double>(".5"), 0.5);
    for (const std::string bad : {"abc", "0x10", "12abc", "1.5", "1 ", "--1", "-", "+"})
        EXPECT_EQ(ThrownText([&] { ConvertToken<int>(bad); }), "unrecognized expression <" + bad + ">");
    for (const std::string bad : {"1,5", "0x10", "nan", "inf", "1.2.3"})
        EXPECT_EQ(ThrownText([&] { ConvertToken<double>(bad); }), "unrecognized expression <" + bad + ">");
}

TEST(CountedPointers, DestroyTheObjectWithTheLastHolder) {
    struct Base {
        virtual ~Base() = default;
    };
    struct Derived : Base {
        explicit Derived(int& counter) : alive(counter) { ++alive; }
        ~Derived() override { --alive; }
        int& alive;
    };
    int alive = 0;
    {
        auto derived = MakeCounted<Derived>(alive);
        CountedPtr<Base> base = derived;
        EXPECT_EQ(base.GetCount(), 2u);
        derived = nullptr;
        EXPECT_EQ(alive, 1);
        base = CountedPtr<Base>(base);
        EXPECT_EQ(base.GetCount(), 1u);
    }
    EXPECT_EQ(alive, 0);
}
