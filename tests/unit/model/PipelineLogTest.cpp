#include "model/PipelineLog.h"

#include <gmock/gmock.h>

namespace zuvo {
namespace {

TEST(PipelineLog, keepsTextColourAndIdentity) {
    const auto line = PipelineLog::make("  ✓ done", LogColor::green, {4, 5}, "ID-1");
    EXPECT_EQ(line.text, "  ✓ done");
    EXPECT_EQ(line.color, "green");
    EXPECT_EQ(line.id, "ID-1");
    EXPECT_EQ(line.timestamp, "04:05");
}

TEST(PipelineLog, timestampHoldsMinutesAndSecondsOfTheClock) {
    EXPECT_EQ(PipelineLog::make("", LogColor::muted, {0, 0}, "").timestamp, "00:00");
    EXPECT_EQ(PipelineLog::make("", LogColor::muted, {59, 59}, "").timestamp, "59:59");
}

TEST(PipelineLog, timestampRepeatsEveryHour) {
    const auto clockAt = [](int secondsOfDay) { return ClockTime{secondsOfDay / 60 % 60, secondsOfDay % 60}; };
    const auto first = PipelineLog::make("", LogColor::muted, clockAt(9 * 3600 + 754), "1");
    const auto anHourLater = PipelineLog::make("", LogColor::muted, clockAt(10 * 3600 + 754), "2");
    EXPECT_EQ(first.timestamp, "12:34");
    EXPECT_EQ(anHourLater.timestamp, first.timestamp);
}

TEST(LogColor, hasTheseWords) {
    EXPECT_STREQ(LogColor::dim, "dim");
    EXPECT_STREQ(LogColor::muted, "muted");
    EXPECT_STREQ(LogColor::green, "green");
    EXPECT_STREQ(LogColor::accent, "accent");
}

} // namespace
} // namespace zuvo
