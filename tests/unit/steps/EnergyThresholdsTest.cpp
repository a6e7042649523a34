#include "steps/Energy.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <limits>
#include <random>

namespace zuvo {
namespace {

EnergyThresholds of(const std::vector<double>& energies) {
    return energyThresholds(energies);
}

void expectCounts(const EnergyThresholds& result, std::size_t loud, std::size_t medium, std::size_t quiet) {
    EXPECT_EQ(result.loud, loud);
    EXPECT_EQ(result.medium, medium);
    EXPECT_EQ(result.quiet, quiet);
}

TEST(EnergyThresholds, ofNoLinesAreSilenceWithCountsOfZero) {
    const auto result = of({});
    EXPECT_EQ(result.quietThreshold, -60.0);
    EXPECT_EQ(result.loudThreshold, -60.0);
    expectCounts(result, 0, 0, 0);
}

TEST(EnergyThresholds, withoutAnySoundEveryLineIsLoud) {
    const auto result = of(std::vector<double>(25, -60.0));
    EXPECT_EQ(result.quietThreshold, -60.0);
    EXPECT_EQ(result.loudThreshold, -60.0);
    expectCounts(result, 25, 0, 0);
}

TEST(EnergyThresholds, ofOneLineAreItsOwnLevelSinceNoCandidateIsTried) {
    const auto result = of({-33.0});
    EXPECT_EQ(result.quietThreshold, -33.0);
    EXPECT_EQ(result.loudThreshold, -33.0);
    expectCounts(result, 1, 0, 0);
}

TEST(EnergyThresholds, ofTwoLinesAreTheMedianSinceTheOnlyCandidateLeavesNothingBelow) {
    const auto result = of({-20.0, -40.0});
    EXPECT_EQ(result.quietThreshold, -20.0);
    EXPECT_EQ(result.loudThreshold, -20.0);
    expectCounts(result, 1, 0, 1);
}

TEST(EnergyThresholds, splitTwoClustersWhereTheScatterWithinIsLeast) {
    // At -20 the groups scatter by 2/3 and 2; at -49 by 0 and 677, at -19 by 660.75 and 0.5.
    const auto result = of({-19.0, -50.0, -20.0, -49.0, -18.0, -50.0});
    EXPECT_EQ(result.quietThreshold, -20.0);
    // A third of the upper class {-20, -19, -18} is medium.
    EXPECT_EQ(result.loudThreshold, -19.0);
    expectCounts(result, 2, 1, 3);
}

TEST(EnergyThresholds, ofEquallyGoodCandidatesTheLowestStays) {
    // At -20 and at -10 the groups scatter by 100 and 0 in all, exactly.
    const auto result = of({-30.0, -30.0, -20.0, -20.0, -10.0, -10.0});
    EXPECT_EQ(result.quietThreshold, -20.0);
    EXPECT_EQ(result.loudThreshold, -20.0);
    expectCounts(result, 4, 0, 2);
}

TEST(EnergyThresholds, aLoudOutlierAboveThe90thPercentileIsNoCandidate) {
    std::vector<double> energies(9, -50.0);
    energies.push_back(0.0);
    const auto result = of(energies);
    EXPECT_EQ(result.quietThreshold, -50.0);
    expectCounts(result, 10, 0, 0);
}

TEST(EnergyThresholds, aLevelBelowThe10thPercentileIsNoCandidate) {
    // At -20.5, the second of twenty, the groups would scatter least, but candidates begin with the third.
    std::vector<double> energies(18, -20.0);
    energies.push_back(-20.5);
    energies.push_back(-90.0);
    const auto result = of(energies);
    EXPECT_EQ(result.quietThreshold, -20.0);
    expectCounts(result, 18, 0, 2);
}

TEST(EnergyThresholds, theLoudestTwoThirdsOfTheUpperClassAreLoud) {
    // Upper class of seven: 7 ÷ 3 = 2, so that its third value is the first loud one.
    const auto result = of({-55, -55, -55, -26, -25, -24, -23, -22, -21, -20});
    EXPECT_EQ(result.quietThreshold, -26.0);
    EXPECT_EQ(result.loudThreshold, -24.0);
    expectCounts(result, 5, 2, 3);
}

/// The rule written out without any short cut.
double plainQuietThreshold(std::vector<double> sorted) {
    std::sort(sorted.begin(), sorted.end());
    const auto n = sorted.size();
    double threshold = sorted[n / 2];
    double best = std::numeric_limits<double>::infinity();
    for (std::size_t i = n / 10; i < 9 * n / 10; ++i) {
        std::vector<double> low;
        std::vector<double> high;
        for (const double x : sorted)
            (x < sorted[i] ? low : high).push_back(x);
        if (low.empty() || high.empty())
            continue;
        double score = 0.0;
        for (const auto& group : {low, high}) {
            const auto size = static_cast<double>(group.size());
            double sum = 0.0;
            for (const double x : group)
                sum += x;
            double squares = 0.0;
            for (const double x : group)
                squares += (x - sum / size) * (x - sum / size);
            score += size * (squares / size);
        }
        if (score < best) {
            best = score;
            threshold = sorted[i];
        }
    }
    return threshold;
}

TEST(EnergyThresholds, holdOnRandomRecordings) {
    std::mt19937 random(20240229);
    for (int round = 0; round < 300; ++round) {
        std::uniform_int_distribution<std::size_t> size(1, 120);
        std::uniform_int_distribution<int> tenths(-600, 0);
        const int step = round % 3 == 0 ? 50 : 1; // every third recording has many equal levels
        std::vector<double> energies(size(random));
        for (auto& energy : energies)
            energy = tenths(random) / step * step / 10.0;
        const auto result = of(energies);
        EXPECT_EQ(result.loud + result.medium + result.quiet, energies.size());
        EXPECT_GE(result.loud, 1u);
        EXPECT_LE(result.quietThreshold, result.loudThreshold);
        EXPECT_EQ(result.quietThreshold, plainQuietThreshold(energies)) << "round " << round;
        std::shuffle(energies.begin(), energies.end(), random);
        EXPECT_EQ(of(energies).loudThreshold, result.loudThreshold);
    }
}

TEST(EnergyLogLine, saysCountsAndWholeDecibels) {
    EnergyThresholds thresholds;
    thresholds.quietThreshold = -40.6;
    thresholds.loudThreshold = -30.4;
    thresholds.loud = 12;
    thresholds.medium = 3;
    thresholds.quiet = 4;
    EXPECT_EQ(energyLogLine(thresholds),
              "  Energy: 12 loud, 3 medium, 4 quiet — thresholds: quiet<-41dB<med<-30dB<loud");
}

TEST(EnergyLogLine, withoutAnySoundSaysMinus60Twice) {
    EXPECT_EQ(energyLogLine(of(std::vector<double>(7, -60.0))),
              "  Energy: 7 loud, 0 medium, 0 quiet — thresholds: quiet<-60dB<med<-60dB<loud");
}

} // namespace
} // namespace zuvo
