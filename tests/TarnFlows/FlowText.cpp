// Flags, lists, ranges and forgiving numbers.
#include "Support/FlowText.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <stdexcept>

namespace {

TEST(FlowText, OnlyTheTwoExactWordsAreFlags) {
    EXPECT_TRUE(FlowText::convertFromStringToBool("true"));
    EXPECT_FALSE(FlowText::convertFromStringToBool("false"));
    for (const std::string text : {"", "True", "1", "false ", "yes"}) {
        try {
            FlowText::convertFromStringToBool(text);
            ADD_FAILURE() << text << " was accepted";
        } catch (CSvMsgException* thrown) {
            const std::unique_ptr<CSvMsgException> error(thrown);
            EXPECT_EQ(error->GetDescription(), "Invalid flag: " + text);
            EXPECT_TRUE(error->GetFile() && error->GetFunction() && error->GetLine() > 0);
        }
    }
}

TEST(FlowText, ListsHaveNoEmptyTokensAndConsumeTheirText) {
    using Texts = std::vector<std::string>;
    using Ints = std::vector<std::int32_t>;
    const struct {
        std::string text, delimiters;
        Texts texts;
        Ints ints;  // the first token ends at a comma
    } cases[] = {{"a,b", ",", {"a", "b"}, {0, 0}},
                 {",,1,,2,", ",", {"1", "2"}, {1, 2}},
                 {"", ",", {}, {}},
                 {",,", ",", {}, {}},
                 {"1;2,3;4", ";", {"1", "2,3", "4"}, {1, 3, 4}},
                 {"1;2", ";", {"1", "2"}, {1}},
                 {"-5 , 7x,99999999999,-99999999999",
                  ",",
                  {"-5 ", " 7x", "99999999999", "-99999999999"},
                  {-5, 7, INT_MAX, INT_MIN}},
                 {"a b", "", {"a b"}, {0}}};
    for (const auto& test : cases) {
        std::string first = test.text, second = test.text;
        EXPECT_EQ(FlowText::SplitString(first, test.delimiters), test.texts) << test.text;
        EXPECT_EQ(FlowText::SplitStringToInts(second, test.delimiters), test.ints) << test.text;
        EXPECT_TRUE(first.empty() && second.empty()) << test.text;
    }
}

TEST(FlowText, ARangeHoldsItsTwoEndsAndNamesWhatIsOutside) {
    EXPECT_NO_THROW(FlowText::CheckRange<int>(-160, -160, -1, "noise floor"));
    EXPECT_NO_THROW(FlowText::CheckRange<int>(-1, -160, -1, "noise floor"));
    const auto messageOf = [](auto check) -> std::string {
        try {
            check();
        } catch (CmdLine::Exceptions::ParsingException* thrown) {
            return std::unique_ptr<CmdLine::Exceptions::ParsingException>(thrown)->what();
        }
        return "nothing was thrown";
    };
    EXPECT_EQ(messageOf([] { FlowText::CheckRange<int>(0, -160, -1, "noise floor"); }),
              "parameter noise floor is out of range [-160...-1]");
    EXPECT_EQ(messageOf([] { FlowText::CheckRange<std::uint32_t>(static_cast<std::uint32_t>(-1), 0, 99, "counter"); }),
              "parameter counter is out of range [0...99]");
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
