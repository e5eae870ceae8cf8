// Flags, lists, ranges and forgiving numbers.
#include "Support/FlowText.h"

#include <gtest/gtest.h>

#include <climits>
#include <stdexcept>

#include "Support/Thrown.h"

namespace {

TEST(FlowText, OnlyTheTwoExactWordsAreFlags) {
    EXPECT_TRUE(FlowText::convertFromStringToBool("true"));
    EXPECT_FALSE(FlowText::convertFromStringToBool("false"));
    for (const std::string text : {"", "True", "1", "false ", "yes"})
        EXPECT_EQ(Support::ThrownText([&] { FlowText::convertFromStringToBool(text); }), "Invalid flag: " + text);
}

TEST(FlowText, ListsHaveNoEmptyTokensAndConsumeTheirText) {
    using Texts = std::vector<std::string>;
    using Ints = std::vector<std::int32_t>;
    const struct {
        std::string text, delimiters;
        Texts texts;
        Ints ints;  // the first token ends at a comma
    } cases[] = {{",,1,,2,", ",", {"1", "2"}, {1, 2}},
                 {",,", ",", {}, {}},
                 {"1;2,3;4", ";", {"1", "2,3", "4"}, {1, 3, 4}},
                 {"1;2", ";", {"1", "2"}, {1}},
                 {"-5 , 7x,99999999999", ",", {"-5 ", " 7x", "99999999999"}, {-5, 7, INT_MAX}},
                 {"a b", "", {"a b"}, {0}}};
    for (const auto& test : cases) {
        std::string first = test.text, second = test.text;
        EXPECT_EQ(FlowText::SplitString(first, test.delimiters), test.texts) << test.text;
        EXPECT_EQ(FlowText::SplitStringToInts(second, test.delimiters), test.ints) << test.text;
        EXPECT_TRUE(first.empty() && second.empty()) << test.text;
    }
}

TEST(FlowText, ARangeHoldsItsTwoEndsAndNamesWhatIsOutside) {
    const auto told = [](auto value, auto low, auto high) {
        return Support::ThrownText([=] { FlowText::CheckRange<decltype(value)>(value, low, high, "p"); });
    };
    for (const int end : {-160, -1})
        EXPECT_EQ(told(end, -160, -1), "nothing thrown");
    for (const int outside : {-161, 0})
        EXPECT_EQ(told(outside, -160, -1), "parameter p is out of range [-160...-1]");
    EXPECT_EQ(told(static_cast<std::uint32_t>(-1), 0u, 99u), "parameter p is out of range [0...99]");
}

TEST(FlowText, NumbersFollowTheForgivingConversions) {
    for (const char* text : {"36", " \t36", "+36.9", "36e2", "036x"}) {
        EXPECT_EQ(FlowText::TextToInt(text), 36) << text;
        EXPECT_EQ(FlowText::AtoiText(text), 36) << text;
    }
    for (const char* text : {"", "abc", "- 1", "--1", "+-1"}) {
        EXPECT_THROW(FlowText::TextToInt(text), std::invalid_argument) << text;
        EXPECT_EQ(FlowText::AtoiText(text), 0) << text;
        EXPECT_EQ(FlowText::AtofText(text), 0.0) << text;
    }
    for (const int limit : {INT_MIN, INT_MAX}) {
        EXPECT_EQ(FlowText::TextToInt(std::to_string(limit)), limit);
        for (const std::string& text : {std::to_string(limit) + "0", std::to_string(limit + (limit > 0 ? 1LL : -1LL)),
                                        std::to_string(limit) + std::string(30, '9')}) {
            EXPECT_THROW(FlowText::TextToInt(text), std::out_of_range) << text;
            EXPECT_EQ(FlowText::AtoiText(text), limit) << text;
        }
    }
    EXPECT_EQ(FlowText::AtofText(" -3.5dB"), -3.5);
    EXPECT_THROW(FlowText::AtofText("1e999"), std::out_of_range);
}

}  // namespace
