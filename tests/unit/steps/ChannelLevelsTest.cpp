#include "steps/Energy.h"

#include <gmock/gmock.h>

namespace zuvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(MeanVolumes, areTheFiguresOfVolumedetect) {
    EXPECT_THAT(meanVolumes("[Parsed_volumedetect_1 @ 0x55] n_samples: 240000\n"
                            "[Parsed_volumedetect_1 @ 0x55] mean_volume: -27.3 dB\n"
                            "[Parsed_volumedetect_1 @ 0x55] max_volume: -9.1 dB\n"),
                ElementsAre(-27.3));
}

TEST(MeanVolumes, areReadFromEveryLineAndTheLastLabelOfEach) {
    EXPECT_THAT(meanVolumes("mean_volume: -1 dB\nmean_volume: -2 dB mean_volume:   -3.5 dB  \nmean_volume:4"),
                ElementsAre(-1.0, -3.5, 4.0));
}

TEST(MeanVolumes, mayLackTheirUnit) {
    EXPECT_THAT(meanVolumes("mean_volume: -27.3"), ElementsAre(-27.3));
}

TEST(MeanVolumes, thatDoNotParseAreLeftOut) {
    for (const char* text : {"", "mean_volume:", "mean_volume: -inf dB", "mean_volume: nan dB",
                             "mean_volume: x\nmax_volume: -3 dB", "mean_volume: -27.3 dB\r"})
        EXPECT_THAT(meanVolumes(text), IsEmpty()) << text;
}

TEST(PrimaryChannelFilter, takesTheChannelThatIs7DbLouder) {
    EXPECT_EQ(primaryChannelFilter({3 * -20.0, 3 * -27.0, 6}), "pan=1c|c0=c0");
    EXPECT_EQ(primaryChannelFilter({3 * -27.0, 3 * -20.0, 6}), "pan=1c|c0=c1");
}

TEST(PrimaryChannelFilter, mixesChannelsThatAre4Point9DbApart) {
    EXPECT_EQ(primaryChannelFilter({3 * -20.0, 3 * -24.9, 6}), "");
    EXPECT_EQ(primaryChannelFilter({3 * -24.9, 3 * -20.0, 6}), "");
}

TEST(PrimaryChannelFilter, aDifferenceOfExactly5DbIsNone) {
    EXPECT_EQ(primaryChannelFilter({-60.0, -75.0, 6}), "");
    EXPECT_EQ(primaryChannelFilter({-75.0, -60.0, 6}), "");
    EXPECT_EQ(primaryChannelFilter({-60.0, -75.375, 6}), "pan=1c|c0=c0");
}

TEST(PrimaryChannelFilter, threeOfSixMeasurementsDecideNothing) {
    EXPECT_EQ(primaryChannelFilter({-10.0, -300.0, 3}), "");
    EXPECT_EQ(primaryChannelFilter({-10.0, -300.0, 4}), "pan=1c|c0=c0");
}

TEST(PrimaryChannelFilter, dividesByThreeEvenIfAMeasurementIsMissing) {
    // Right is 9 dB quieter where both were heard, but one of its figures is missing: -20 against -19.33.
    EXPECT_EQ(primaryChannelFilter({3 * -20.0, 2 * -29.0, 5}), "");
}

} // namespace
} // namespace zuvo
