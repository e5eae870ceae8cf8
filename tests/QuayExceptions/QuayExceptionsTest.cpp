#include <gtest/gtest.h>

#include "QuayExceptions.h"

TEST(QuayMessage, JoinsDescriptionAndFunctionAndKeepsItsPlace) {
    const CQuayMsgException error("No answer", "Tune", "radio.cpp", 258), none(nullptr, nullptr, nullptr, 0);
    EXPECT_STREQ(CQuayMsgException(error).what(), "No answer in Tune");
    EXPECT_STREQ(CQuayMsgException(error).GetFile(), "radio.cpp");
    EXPECT_EQ(error.GetLine(), 258);
    EXPECT_STREQ(none.what(), " in ");
    EXPECT_STREQ(none.GetFile(), "");
}
