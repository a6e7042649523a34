#include "exporters/Timecode.h"
#include "support/SpecialNumbers.h"

#include <gtest/gtest.h>

#include <limits>

namespace zuvo {
namespace {

std::string timecode(double seconds, double fps) {
    return Timecode(seconds, fps).description();
}

TEST(TimecodeFields, areTruncatedEach) {
    const Timecode timecode(3725.5, 24.0);
    EXPECT_EQ(timecode.hours, 1);
    EXPECT_EQ(timecode.minutes, 2);
    EXPECT_EQ(timecode.seconds, 5);
    EXPECT_EQ(timecode.frames, 12);
    EXPECT_EQ(timecode.fps, 24.0);
}

TEST(TimecodeText, hasFourFieldsOfTwoDigits) {
    EXPECT_EQ(timecode(0.0, 24.0), "00:00:00:00");
    EXPECT_EQ(timecode(59.75, 24.0), "00:00:59:18");
    EXPECT_EQ(timecode(60.0, 24.0), "00:01:00:00");
    EXPECT_EQ(timecode(3599.0, 24.0), "00:59:59:00");
    EXPECT_EQ(timecode(3600.0, 24.0), "01:00:00:00");
    EXPECT_EQ(timecode(86400.0, 24.0), "24:00:00:00");
}

TEST(TimecodeText, widensForAHundredHoursAndAHundredFrames) {
    EXPECT_EQ(timecode(360000.0, 24.0), "100:00:00:00");
    EXPECT_EQ(timecode(0.5, 240.0), "00:00:00:120");
}

TEST(TimecodeText, aTimeAHairBelowAWholeSecondLandsOnTheFrameBeforeIt) {
    EXPECT_EQ(timecode(0.9999999, 24.0), "00:00:00:23");
    EXPECT_EQ(timecode(59.9999999, 25.0), "00:00:59:24");
    // Ten times 0.1 is the double below 1.
    double sum = 0.0;
    for (int i = 0; i < 10; ++i)
        sum += 0.1;
    EXPECT_EQ(timecode(sum, 25.0), "00:00:00:24");
}

struct LastFrame {
    double fps;
    const char* text;
};

class LastFrameOfASecond : public testing::TestWithParam<LastFrame> {};

TEST_P(LastFrameOfASecond, isTheHighestNumberBelowTheRate) {
    EXPECT_EQ(timecode(1.9999999, GetParam().fps), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Rates, LastFrameOfASecond,
                         testing::Values(LastFrame{23.976, "00:00:01:23"}, LastFrame{23.98, "00:00:01:23"},
                                         LastFrame{24.0, "00:00:01:23"}, LastFrame{25.0, "00:00:01:24"},
                                         LastFrame{29.97, "00:00:01:29"}, LastFrame{30.0, "00:00:01:29"},
                                         LastFrame{47.952, "00:00:01:47"}, LastFrame{50.0, "00:00:01:49"},
                                         LastFrame{59.94, "00:00:01:59"}, LastFrame{60.0, "00:00:01:59"}));

TEST(TimecodeSeconds, areWhatTheFieldsSay) {
    EXPECT_EQ(Timecode(3725.5, 24.0).totalSeconds(), 3725.5);
    EXPECT_EQ(Timecode(10.99, 25.0).totalSeconds(), 10.0 + 24.0 / 25.0);
    EXPECT_EQ(Timecode::zero(29.97).totalSeconds(), 0.0);
}

TEST(TimecodePlusSeconds, goesOnFromTheWholeFrameAtTheSameRate) {
    // 0.99 s at 25 is frame 24, or 0.96 s; what is above it is lost, whatever is added.
    const auto sum = Timecode(0.99, 25.0) + 0.5;
    EXPECT_EQ(sum.description(), "00:00:01:11");
    EXPECT_EQ(sum.fps, 25.0);
    EXPECT_EQ((Timecode::zero(24.0) + 5.5).description(), "00:00:05:12");
}

TEST(TimecodePlusSeconds, keepsWholeSecondsWhole) {
    auto timecode = Timecode::zero(23.976);
    for (int i = 0; i < 1000; ++i)
        timecode = timecode + 4.0;
    EXPECT_EQ(timecode.description(), "01:06:40:00");
}

TEST(TimecodeOfOddNumbers, belowZeroHasNegativeFields) {
    EXPECT_EQ(timecode(-0.5, 24.0), "00:00:00:-12");
    EXPECT_EQ(timecode(-3661.25, 24.0), "-1:-1:-1:-6");
}

TEST(TimecodeOfOddNumbers, standsAtTheEndOfTheRange) {
    EXPECT_EQ(Timecode(1e308, 24.0).hours, std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(Timecode(-1e308, 24.0).hours, std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(Timecode(0.5, 1e308).frames, std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(Timecode(0.5, -24.0).frames, -12);
    // 2^63 / 3600 hours and a remainder: the rest of the division is exact.
    EXPECT_EQ(timecode(9223372036854775808.0, 24.0), "2562047788015215:30:08:00");
}

TEST(TimecodeOfOddNumbers, noNumberCountsAsZero) {
    EXPECT_EQ(timecode(notANumber, 24.0), "00:00:00:00");
    EXPECT_EQ(timecode(1.5, notANumber), "00:00:01:00");
    EXPECT_EQ(timecode(infinity, 24.0), "9223372036854775807:00:00:00");
}

TEST(TimecodeOfOddNumbers, withoutARateASumIsNoNumberAndSoZero) {
    EXPECT_EQ(timecode(1.5, 0.0), "00:00:01:00");
    EXPECT_EQ((Timecode(1.5, 0.0) + 2.0).description(), "00:00:00:00");
}

} // namespace
} // namespace zuvo
