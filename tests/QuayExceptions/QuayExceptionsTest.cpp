#include <gtest/gtest.h>

#include "QuayExceptions.h"

namespace {
std::string record;
}

TEST(QuayMessage, JoinsDescriptionAndFunctionAndReportsWhereItWasRaised) {
    SetQuayErrorHook([](const QuayErrorRecord& error) {
        for (const auto& argument : TypeAny::ArgumentsOf(error))
            record += argument->GetName() + "|" + argument->ToText() + "\n";
    });
    const CQuayMsgException error("No answer", "Tune", "radio.cpp", 258);
    SetQuayErrorHook(nullptr);
    EXPECT_STREQ(error.what(), "No answer in Tune");
    EXPECT_STREQ(CQuayMsgException(error).GetFile(), "radio.cpp");
    EXPECT_EQ(record,
              "|Type: int\nContent 00 00 00 00 \n"
              "fileName|Type: char const *\nBuffer Size: 9\nContent radio.cpp\n\n"
              "errorLine|Type: int\nContent 02 01 00 00 \n"
              "funcName|Type: char const *\nBuffer Size: 4\nContent Tune\n\n"
              "desc|Type: char const *\nBuffer Size: 9\nContent No answer\n\n");
}

TEST(QuayMessage, TakesNullTexts) {
    const CQuayMsgException error(nullptr, nullptr, nullptr, 0);
    EXPECT_STREQ(error.what(), " in ");
    EXPECT_STREQ(error.GetFile(), "");
}

TEST(TypeAny, ShowsATextOfOtherThanPrintableCharactersAsBytes) {
    EXPECT_TRUE(TypeAny::TypeContainer<const char*>("two\r\nlines").IsText());
    const TypeAny::TypeContainer<const char*> binary("a\x80\t");
    EXPECT_FALSE(binary.IsText());
    EXPECT_EQ(binary.ToText(), "Type: char const *\nContent 61 80 09 ");
    EXPECT_EQ(TypeAny::TypeContainer<const char*>(nullptr).GetSize(), 0u);
    EXPECT_EQ(TypeAny::PlainTypeName("struct a::class b * __ptr64"), "a::b *");
}
