#include "model/AuditReport.h"

#include <gmock/gmock.h>

namespace zuvo {
namespace {

TEST(AuditReport, usedSegmentsAndGoldMomentsAreKnownByTheirTwoTimes) {
    EXPECT_EQ((UsedSegment{1.0, 2.5, "t"}.id()), "1.0-2.5");
    EXPECT_EQ((GoldMoment{1.0, 2.5, "t", "r", 9}.id()), "1.0-2.5");
}

TEST(AuditReport, aRedundancyIsKnownByItsTwoStarts) {
    EXPECT_EQ((Redundancy{1.0, 2.0, 30.25, 40.0, "t"}.id()), "1.0-30.25");
}

TEST(AuditReport, anAlternateTakeIsKnownByItsOwnStartAndThenTheExistingOne) {
    EXPECT_EQ((AlternateTake{1.0, 2.0, 30.25, 40.0, "t", "r"}.id()), "30.25-1.0");
}

TEST(AuditReport, anEmotionalWeightHasNoFraction) {
    const std::string head = R"({"startTime":1,"endTime":2,"text":"t","reason":"r","emotionalWeight":)";
    EXPECT_EQ(decodeRecordText<GoldMoment>(head + "7.0}").value->emotionalWeight, 7);
    EXPECT_EQ(decodeRecordText<GoldMoment>(head + "7.5}").failure, "emotionalWeight is not an integer");
}

} // namespace
} // namespace zuvo
