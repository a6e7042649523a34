#include "base/Numbers.h"

#include "support/CommaLocale.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace zuvo {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr auto largestInteger = std::numeric_limits<std::int64_t>::max();
constexpr auto smallestInteger = std::numeric_limits<std::int64_t>::min();

TEST(ParseDouble, readsDecimalNumbers) {
    EXPECT_EQ(parseDouble("0"), 0.0);
    EXPECT_EQ(parseDouble("12.5"), 12.5);
    EXPECT_EQ(parseDouble("-12.5"), -12.5);
    EXPECT_EQ(parseDouble("+12.5"), 12.5);
    EXPECT_EQ(parseDouble(".5"), 0.5);
    EXPECT_EQ(parseDouble("5."), 5.0);
    EXPECT_EQ(parseDouble("1e3"), 1000.0);
    EXPECT_EQ(parseDouble("1E-2"), 0.01);
    EXPECT_EQ(parseDouble("1e+2"), 100.0);
    EXPECT_EQ(parseDouble("33.333333333333336"), 33.333333333333336);
    EXPECT_EQ(parseDouble("5e-324"), 5e-324);
    EXPECT_EQ(parseDouble("00012"), 12.0);
}

TEST(ParseDouble, keepsTheSignOfZero) {
    const auto zero = parseDouble("-0.0");
    ASSERT_TRUE(zero.has_value());
    EXPECT_TRUE(std::signbit(*zero));
}

TEST(ParseDouble, readsTheWholeTextOrNothing) {
    for (const char* text :
         {"",    " ",   " 1",  "1 ",    "1\n",  "1,5",   "1.2.3", "1e",   "e5",  "+",        "-",  ".",     "--1",
          "+-1", "-+1", "++1", "12 dB", "0x10", "0x1p3", "inf",   "-inf", "nan", "infinity", "1f", "1_000", "١"})
        EXPECT_EQ(parseDouble(text), std::nullopt) << text;
    EXPECT_EQ(parseDouble(std::string_view("1\0", 2)), std::nullopt);
}

TEST(ParseDouble, refusesWhatIsBeyondTheRange) {
    EXPECT_EQ(parseDouble("1e999"), std::nullopt);
    EXPECT_EQ(parseDouble("-1e999"), std::nullopt);
    EXPECT_EQ(parseDouble("1e-999"), std::nullopt);
}

TEST(ParseInteger, readsDecimalIntegers) {
    EXPECT_EQ(parseInteger("0"), 0);
    EXPECT_EQ(parseInteger("+7"), 7);
    EXPECT_EQ(parseInteger("-7"), -7);
    EXPECT_EQ(parseInteger("007"), 7);
    EXPECT_EQ(parseInteger("9223372036854775807"), largestInteger);
    EXPECT_EQ(parseInteger("-9223372036854775808"), smallestInteger);
}

TEST(ParseInteger, readsTheWholeTextOrNothing) {
    for (const char* text : {"", " 1", "1 ", "1.0", "1e3", "+", "-", "+-1", "++1", "0x1", "x", "9223372036854775808",
                             "-9223372036854775809"})
        EXPECT_EQ(parseInteger(text), std::nullopt) << text;
}

TEST(PlainText, isTheShortestTextThatReadsBack) {
    EXPECT_EQ(plainText(0.1), "0.1");
    EXPECT_EQ(plainText(33.333333333333336), "33.333333333333336");
    EXPECT_EQ(plainText(-2.5), "-2.5");
    EXPECT_EQ(plainText(5e-324), "5e-324");
}

TEST(PlainText, endsWholeNumbersInPointZero) {
    EXPECT_EQ(plainText(300.0), "300.0");
    EXPECT_EQ(plainText(0.0), "0.0");
    EXPECT_EQ(plainText(-0.0), "-0.0");
    EXPECT_EQ(plainText(-7.0), "-7.0");
    EXPECT_EQ(plainText(1e15), "1000000000000000.0");
}

TEST(PlainText, turnsToAnExponentForVeryLargeAndVerySmallValues) {
    EXPECT_EQ(plainText(1e16), "1e+16");
    EXPECT_EQ(plainText(1.5e300), "1.5e+300");
    EXPECT_EQ(plainText(0.0001), "0.0001");
    EXPECT_EQ(plainText(1e-5), "1e-05");
}

TEST(PlainText, namesWhatIsNoNumber) {
    EXPECT_EQ(plainText(infinity), "inf");
    EXPECT_EQ(plainText(-infinity), "-inf");
    EXPECT_EQ(plainText(notANumber), "nan");
}

TEST(FixedText, roundsTheExactValueLikePrintf) {
    EXPECT_EQ(fixedText(125.5, 1), "125.5");
    EXPECT_EQ(fixedText(0.25, 1), "0.2");
    EXPECT_EQ(fixedText(0.75, 1), "0.8");
    EXPECT_EQ(fixedText(0.15, 1), "0.1"); // the double lies just below 0.15
    EXPECT_EQ(fixedText(0.5, 0), "0");
    EXPECT_EQ(fixedText(1.5, 0), "2");
    EXPECT_EQ(fixedText(2.5, 0), "2");
    EXPECT_EQ(fixedText(-0.04, 1), "-0.0");
    EXPECT_EQ(fixedText(99.95, 1), "100.0"); // the double lies just above 99.95
    EXPECT_EQ(fixedText(1e21, 0), "1000000000000000000000");
}

TEST(FixedText, survivesWhatIsNoNumber) {
    EXPECT_EQ(fixedText(notANumber, 1), "nan");
    EXPECT_EQ(fixedText(-infinity, 1), "-inf");
}

TEST(NumberForms, doNotDependOnTheDesktopsLocale) {
    const tests::CommaLocale locale;
    EXPECT_EQ(plainText(1234.5), "1234.5");
    EXPECT_EQ(plainText(1234567.0), "1234567.0");
    EXPECT_EQ(fixedText(1234567.25, 1), "1234567.2");
    EXPECT_EQ(parseDouble("1234.5"), 1234.5);
    EXPECT_EQ(parseDouble("1234,5"), std::nullopt);
    EXPECT_EQ(parseInteger("1234567"), 1234567);
}

TEST(Truncated, goesTowardZero) {
    EXPECT_EQ(truncated(2.9), 2);
    EXPECT_EQ(truncated(-2.9), -2);
    EXPECT_EQ(truncated(-0.5), 0);
}

TEST(Truncated, givesTheNearestEndBeyond64Bits) {
    EXPECT_EQ(truncated(1e300), largestInteger);
    EXPECT_EQ(truncated(infinity), largestInteger);
    EXPECT_EQ(truncated(9223372036854775808.0), largestInteger);
    EXPECT_EQ(truncated(9223372036854774784.0), 9223372036854774784); // the double below it fits
    EXPECT_EQ(truncated(-9223372036854775808.0), smallestInteger);
    EXPECT_EQ(truncated(-1e300), smallestInteger);
    EXPECT_EQ(truncated(-infinity), smallestInteger);
}

TEST(Truncated, givesZeroForNoNumber) {
    EXPECT_EQ(truncated(notANumber), 0);
}

TEST(RoundedUp, isTheSmallestIntegerNotBelow) {
    EXPECT_EQ(roundedUp(2.0), 2);
    EXPECT_EQ(roundedUp(2.0000001), 3);
    EXPECT_EQ(roundedUp(-2.5), -2);
    EXPECT_EQ(roundedUp(1e300), largestInteger);
    EXPECT_EQ(roundedUp(notANumber), 0);
}

TEST(Rounded, goesToTheNearestAndFromAHalfAwayFromZero) {
    EXPECT_EQ(rounded(2.4), 2);
    EXPECT_EQ(rounded(2.5), 3);
    EXPECT_EQ(rounded(3.5), 4);
    EXPECT_EQ(rounded(-2.4), -2);
    EXPECT_EQ(rounded(-2.5), -3);
    EXPECT_EQ(rounded(0.49999999999999994), 0); // the double below a half
    EXPECT_EQ(rounded(4503599627370497.0), 4503599627370497);
}

TEST(Rounded, givesTheNearestEndBeyond64BitsAndZeroForNoNumber) {
    EXPECT_EQ(rounded(1e300), largestInteger);
    EXPECT_EQ(rounded(-infinity), smallestInteger);
    EXPECT_EQ(rounded(notANumber), 0);
}

TEST(SaturatingSum, isTheSumIfItFits) {
    EXPECT_EQ(saturatingSum(2, 3), 5);
    EXPECT_EQ(saturatingSum(-2, 3), 1);
    EXPECT_EQ(saturatingSum(largestInteger, smallestInteger), -1);
    EXPECT_EQ(saturatingSum(largestInteger - 1, 1), largestInteger);
    EXPECT_EQ(saturatingSum(smallestInteger + 1, -1), smallestInteger);
    EXPECT_EQ(saturatingSum(smallestInteger, 0), smallestInteger);
}

TEST(SaturatingSum, isTheNearestEndIfItDoesNot) {
    EXPECT_EQ(saturatingSum(largestInteger, 1), largestInteger);
    EXPECT_EQ(saturatingSum(1, largestInteger), largestInteger);
    EXPECT_EQ(saturatingSum(smallestInteger, -1), smallestInteger);
    EXPECT_EQ(saturatingSum(smallestInteger, smallestInteger), smallestInteger);
}

} // namespace
} // namespace zuvo
