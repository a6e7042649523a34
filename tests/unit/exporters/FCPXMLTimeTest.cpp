#include "exporters/FCPXMLTime.h"
#include "support/SpecialNumbers.h"

#include <gtest/gtest.h>

#include <limits>

namespace zuvo {
namespace {

struct TimeRate {
    double fps;
    const char* frameDuration;
    const char* halfSecond;
};

class FCPXMLRates : public testing::TestWithParam<TimeRate> {};

TEST_P(FCPXMLRates, oneFrame) {
    EXPECT_EQ(FCPXMLTime::frameDuration(GetParam().fps), GetParam().frameDuration);
}

TEST_P(FCPXMLRates, halfASecond) {
    EXPECT_EQ(FCPXMLTime::rational(0.5, GetParam().fps), GetParam().halfSecond);
}

TEST_P(FCPXMLRates, wholeSecondsAreWholeAtEveryRate) {
    EXPECT_EQ(FCPXMLTime::rational(3600.0, GetParam().fps), "3600s");
}

INSTANTIATE_TEST_SUITE_P(
    Listed, FCPXMLRates,
    testing::Values(TimeRate{23.976, "1001/24000s", "12000/24000s"}, TimeRate{24.0, "100/2400s", "1200/2400s"},
                    TimeRate{25.0, "100/2500s", "1250/2500s"}, TimeRate{29.97, "1001/30000s", "15000/30000s"},
                    TimeRate{30.0, "100/3000s", "1500/3000s"}, TimeRate{50.0, "100/5000s", "2500/5000s"},
                    TimeRate{59.94, "1001/60000s", "30000/60000s"}, TimeRate{60.0, "100/6000s", "3000/6000s"}));

INSTANTIATE_TEST_SUITE_P(Others, FCPXMLRates,
                         testing::Values(TimeRate{23.98, "100/2398s", "1199/2398s"},
                                         TimeRate{12.5, "100/1250s", "625/1250s"},
                                         // Next to a listed rate is not listed: 29.970000000000002 x 100 is 2997.
                                         TimeRate{29.970000000000002, "100/2997s", "1499/2997s"}));

TEST(FCPXMLTime, countsByTheFractionalRateOverItsWholePart) {
    // 47.952 x 100 = 4795.2: 2 s are 9590.4, which rounds to twice 4795; 3600 s are 17262720, which 4795 does not
    // divide.
    EXPECT_EQ(FCPXMLTime::frameDuration(47.952), "100/4795s");
    EXPECT_EQ(FCPXMLTime::rational(2.0, 47.952), "2s");
    EXPECT_EQ(FCPXMLTime::rational(3600.0, 47.952), "17262720/4795s");
}

TEST(FCPXMLTime, zeroIsWrittenWithoutAFraction) {
    EXPECT_EQ(FCPXMLTime::rational(0.0, 24.0), "0s");
    EXPECT_EQ(FCPXMLTime::rational(-0.0, 24.0), "0s");
    EXPECT_EQ(FCPXMLTime::rational(0.0, 0.0), "0s");
}

TEST(FCPXMLTime, fiveSecondsAt24AreWhole) {
    EXPECT_EQ(FCPXMLTime::rational(5.0, 24.0), "5s");
}

TEST(FCPXMLTime, oneAndAHalfSecondsAt23976AreNotReduced) {
    EXPECT_EQ(FCPXMLTime::rational(1.5, 23.976), "36000/24000s");
}

TEST(FCPXMLTime, aTenthOfASecondAt2997IsNoWholeNumberOfFrames) {
    EXPECT_EQ(FCPXMLTime::rational(0.1, 29.97), "3000/30000s");
}

TEST(FCPXMLTime, roundsHalvesAwayFromZero) {
    // 1/4800 s is half of 1/2400.
    EXPECT_EQ(FCPXMLTime::rational(1.0 / 4800.0, 24.0), "1/2400s");
    EXPECT_EQ(FCPXMLTime::rational(-1.0 / 4800.0, 24.0), "-1/2400s");
    EXPECT_EQ(FCPXMLTime::rational(1.0 / 4801.0, 24.0), "0s");
}

TEST(FCPXMLTime, anOffsetIsARational) {
    for (const double seconds : {0.0, 1.5, 5.0, -2.25, 3600.1})
        EXPECT_EQ(FCPXMLTime::offset(seconds, 29.97), FCPXMLTime::rational(seconds, 29.97));
}

TEST(FCPXMLTime, belowZeroHasASign) {
    EXPECT_EQ(FCPXMLTime::rational(-1.0, 24.0), "-1s");
    EXPECT_EQ(FCPXMLTime::rational(-1.25, 24.0), "-3000/2400s");
}

TEST(FCPXMLTime, aNegativeRateHasANegativeDenominator) {
    EXPECT_EQ(FCPXMLTime::frameDuration(-24.0), "100/-2400s");
    EXPECT_EQ(FCPXMLTime::rational(5.0, -24.0), "5s");
    EXPECT_EQ(FCPXMLTime::rational(1.25, -24.0), "-3000/-2400s");
}

TEST(FCPXMLTime, withoutARateTheDenominatorIsZero) {
    EXPECT_EQ(FCPXMLTime::frameDuration(0.0), "100/0s");
    EXPECT_EQ(FCPXMLTime::rational(5.0, 0.0), "0/0s");
    EXPECT_EQ(FCPXMLTime::rational(1000.0, 0.009), "900/0s");
    EXPECT_EQ(FCPXMLTime::frameDuration(notANumber), "100/0s");
    EXPECT_EQ(FCPXMLTime::rational(5.0, notANumber), "0/0s");
}

TEST(FCPXMLTime, standsAtTheEndOfTheRange) {
    EXPECT_EQ(FCPXMLTime::rational(1e308, 24.0), "9223372036854775807/2400s");
    EXPECT_EQ(FCPXMLTime::rational(-infinity, 24.0), "-9223372036854775808/2400s");
    EXPECT_EQ(FCPXMLTime::rational(notANumber, 24.0), "0s");
    EXPECT_EQ(FCPXMLTime::frameDuration(1e308), "100/9223372036854775807s");
    EXPECT_EQ(FCPXMLTime::rational(5.0, 1e308), "1s"); // both ends of the fraction stand there
}

TEST(FCPXMLTime, theSmallestNumberOverMinusOneStandsAtTheEndToo) {
    EXPECT_EQ(FCPXMLTime::rational(1e308, -0.01), "9223372036854775807s");
    EXPECT_EQ(FCPXMLTime::rational(-3.0, -0.01), "-3s");
}

} // namespace
} // namespace zuvo
