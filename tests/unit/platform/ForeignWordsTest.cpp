#include "platform/ForeignWords.h"

#include <gmock/gmock.h>

using namespace zuvo;

TEST(ForeignWords, oneLineHasNoLineEnds) {
    EXPECT_EQ(oneLine("  a\r\n\tb  c\n"), "a b c");
    EXPECT_EQ(oneLine(" \n"), "");
    EXPECT_EQ(oneLine(std::string(500, 'x')), std::string(500, 'x'));
    EXPECT_EQ(oneLine(std::string(501, 'x')), std::string(500, 'x'));
}
