#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <sstream>

#include "Exceptions.h"
#include "Format.h"

using Common::Format;

TEST(Format, FillsPlaceholdersInTheOrderOfTheArguments) {
    const std::pair<Format, std::string> cases[] = {
        {Format("${1}.${2}") % 3 % 4, "3.4"},
        {Format("a${2}b") % "x", "a${2}b"},
        {Format("${1}${1}") % "ab", "abab"},
        {Format("${1} ${2}") % "${2}" % "z", "z z"},
        {Format("m[${0}] c${1}") % 7, "m[${0}] c7"},
        {Format("$(No.Such.Value) ${1}") % 1, "$(No.Such.Value) 1"},
        {Format("${10}${1}") % 1 % 2 % 3 % 4 % 5 % 6 % 7 % 8 % 9 % "ten", "ten1"},
        {Format("none") % 1 % 2, "none"},
        {Format("${${1}}") % "1", "1"},  // the filled text forms the token anew
    };
    for (const auto& [format, expected] : cases) {
        std::ostringstream stream;
        stream << format;
        EXPECT_EQ(stream.str(), expected);
    }
}

TEST(Format, EndsWhenAnArgumentHoldsItsOwnPlaceholder) {
    EXPECT_EQ((Format("<${1}> ${1}") % "x${1}").Text(), "<x${1}> x${1}");
}

TEST(Format, WritesEachTypeInItsOwnWay) {
    const std::string text = Format("${1} ${2} ${3} ${4} ${5} ${6} ${7}") % -5 % std::uint64_t{18446744073709551615u} %
                             std::numeric_limits<std::int64_t>::min() % true % false %
                             static_cast<const char*>(nullptr) % (Format("<${1}>") % 'A');
    EXPECT_EQ(text, "-5 18446744073709551615 -9223372036854775808 1 0  <65>");
    EXPECT_EQ(Format(static_cast<const char*>(nullptr)).Text(), "");
    const std::string bytes("a\0\xC3\xA9", 4);
    EXPECT_EQ((Format("[${1}]") % bytes).Text(), "[" + bytes + "]");
}

TEST(Format, WritesRealNumbersAsADefaultStreamDoes) {
    for (const double value : {3.14159265, 1e6, 123456.0, 1234567.0, 0.0001, 0.00001234567, -0.0, 1e300, 5180.0, -62.25,
                               HUGE_VAL, std::nan("")}) {
        std::ostringstream stream;
        stream << value;
        EXPECT_EQ(Common::ToStreamText(value), stream.str());
    }
    EXPECT_EQ((Format("${1}") % 0.1f).Text(), "0.1");
}

TEST(DecimalText, FillsWithZerosFromTheLeft) {
    EXPECT_EQ(Common::ToDecimalText(0xAB12, 16), "0000AB12");
    EXPECT_EQ(Common::ToDecimalText(0xAB, 16, 2), "AB");
    EXPECT_EQ(Common::ToDecimalText(0x123, 16, 2), "123");
    EXPECT_EQ(Common::ToDecimalText(42), "42");
    EXPECT_EQ(Common::ToDecimalText(42, 10, 6), "000042");
    EXPECT_EQ(Common::ToDecimalText(~0ull, 2), std::string(64, '1'));
}

namespace {
void AddOne(std::string& text) {
    text += "1";
}
void AddTwo(std::string& text) {
    text += "2";
}
}  // namespace

TEST(FormatFilters, RunOverTemplatesOnlyAndMoveToTheEndWhenRegisteredAgain) {
    auto& filters = Utilities::FormatProviders::Instance();
    for (const auto filter : {&AddOne, &AddTwo, &AddOne})
        filters.AddPreProcessor(filter);
    const std::string text = Format("t${1}") % "arg";
    const std::string nested = Format("${1}") % Format("n");
    filters.RemovePreProcessor(&AddOne);
    filters.RemovePreProcessor(&AddTwo);
    EXPECT_EQ(text, "targ21");
    EXPECT_EQ(nested, "n212121") << "an inner template is filtered once more as an argument";
    EXPECT_EQ(Format("t").Text(), "t");
}

TEST(Exceptions, KeepNoEmptyTextsAndOwnTheirLocation) {
    SvErrorLocation location("", 7, nullptr);
    EXPECT_EQ(location.GetFile(), nullptr);
    location.SetFile("f");
    location.SetFile("");
    EXPECT_EQ(location.GetFile(), nullptr);
    EXPECT_STREQ(CSvMsgException("", "file", 1, "").what(), "");

    Utilities::Exception first("text");
    first.SetLocation(new Utilities::ErrorLocation("f", 1, "g"));
    first.SetLocation(new Utilities::ErrorLocation("file", 2, "function"));
    const Utilities::Exception copy(first);
    first.SetLocation(nullptr);
    EXPECT_EQ(copy.GetLocation()->GetFile(), "file");
}
