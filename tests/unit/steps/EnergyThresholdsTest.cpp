#include "steps/EnergyThresholds.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <limits>
#include <random>
#include <string>

namespace zuvo {
namespace {

TranscriptSegment line(double start, double end, const std::string& text) {
    return {start, end, text, "en"};
}

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
EnergyThresholds plainThresholds(const std::vector<double>& energies) {
    auto sorted = energies;
    std::sort(sorted.begin(), sorted.end());
    const auto n = sorted.size();
    EnergyThresholds result;
    result.quietThreshold = sorted[n / 2];
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
            const double mean = sum / size;
            double squares = 0.0;
            for (const double x : group)
                squares += (x - mean) * (x - mean);
            score += size * (squares / size);
        }
        if (score < best) {
            best = score;
            result.quietThreshold = sorted[i];
        }
    }
    std::vector<double> upper;
    std::copy_if(sorted.begin(), sorted.end(), std::back_inserter(upper),
                 [&](double x) { return x >= result.quietThreshold; });
    result.loudThreshold = upper.empty() ? result.quietThreshold : upper[upper.size() / 3];
    for (const double energy : energies) {
        result.loud += energy >= result.loudThreshold ? 1 : 0;
        result.medium += energy >= result.quietThreshold && energy < result.loudThreshold ? 1 : 0;
        result.quiet += energy < result.quietThreshold ? 1 : 0;
    }
    return result;
}

void expectSameAsPlain(const std::vector<double>& energies, const std::string& what) {
    const auto result = of(energies);
    const auto plain = plainThresholds(energies);
    ASSERT_EQ(result.quietThreshold, plain.quietThreshold) << what;
    ASSERT_EQ(result.loudThreshold, plain.loudThreshold) << what;
    ASSERT_EQ(result.loud, plain.loud) << what;
    ASSERT_EQ(result.medium, plain.medium) << what;
    ASSERT_EQ(result.quiet, plain.quiet) << what;
}

using Random = std::mt19937_64;

double uniform(Random& random, double from, double to) {
    return std::uniform_real_distribution<double>(from, to)(random);
}

/// Recordings of many kinds: those that a mine meets, and those in which scores tie or nearly do.
struct Recording {
    const char* name;
    double (*level)(Random& random);
};

constexpr std::array recordings = {
    Recording{"any level", [](Random& random) { return uniform(random, -60.0, 0.0); }},
    Recording{"two speakers",
              [](Random& random) {
                  return uniform(random, 0.0, 3.0) < 1.0 ? uniform(random, -55.0, -45.0)
                                                         : uniform(random, -30.0, -20.0);
              }},
    Recording{"half silent",
              [](Random& random) { return uniform(random, 0.0, 1.0) < 0.5 ? -60.0 : uniform(random, -50.0, -10.0); }},
    Recording{"whole decibels", [](Random& random) { return std::floor(uniform(random, -60.0, 1.0)); }},
    Recording{"few whole decibels", [](Random& random) { return std::floor(uniform(random, -33.0, -27.0)); }},
    Recording{"two levels", [](Random& random) { return uniform(random, 0.0, 1.0) < 0.5 ? -40.0 : -20.0; }},
    Recording{"tenths", [](Random& random) { return std::floor(uniform(random, -600.0, 0.0)) / 10.0; }},
    Recording{"a few tenths", [](Random& random) { return std::floor(uniform(random, -303.0, -297.0)) / 10.0; }},
    // Nearly all of the scatter is rounding.
    Recording{"steps of the last digit",
              [](Random& random) { return -30.0 + std::floor(uniform(random, 0.0, 40.0)) * 0x1p-48; }},
    Recording{"far from zero", [](Random& random) { return 1e9 + std::floor(uniform(random, 0.0, 50.0)) * 1e-3; }},
    Recording{"squares that underflow", [](Random& random) { return std::floor(uniform(random, 0.0, 9.0)) * 1e-162; }},
    Recording{"squares that overflow", [](Random& random) { return uniform(random, -1.0, 1.0) * 1e160; }},
};

TEST(EnergyThresholds, areThoseOfThePlainRuleOnTenThousandRecordings) {
    Random random(20240229);
    for (int round = 0; round < 10'000; ++round) {
        const auto& recording = recordings[static_cast<std::size_t>(round) % recordings.size()];
        const auto most = round % 500 == 0 ? 700U : round % 20 == 0 ? 150U : 40U;
        std::vector<double> energies(std::uniform_int_distribution<std::size_t>(1, most)(random));
        std::generate(energies.begin(), energies.end(), [&] { return recording.level(random); });
        expectSameAsPlain(energies, std::string(recording.name) + ", round " + std::to_string(round));
        if (HasFatalFailure())
            return;
    }
}

/// Levels below -30 dB, and their mirror image above it: every split has a twin of the same exact score, and rounding
/// alone tells them apart.
std::vector<double> mirrored(Random& random, std::size_t pairs) {
    std::vector<double> energies;
    for (std::size_t i = 0; i < pairs; ++i) {
        const double distance = uniform(random, 0.0, 30.0);
        energies.push_back(-30.0 - distance);
        energies.push_back(-30.0 + distance);
    }
    return energies;
}

TEST(EnergyThresholds, areThoseOfThePlainRuleWhereOnlyRoundingTellsScoresApart) {
    Random random(7);
    for (int round = 0; round < 1'000; ++round) {
        const auto pairs = std::uniform_int_distribution<std::size_t>(1, 30)(random);
        expectSameAsPlain(mirrored(random, pairs), "round " + std::to_string(round));
        if (HasFatalFailure())
            return;
    }
}

TEST(EnergyThresholds, areThoseOfThePlainRuleWhereEverySplitIsAboutAsGood) {
    // The sums of the lowest k of n levels are -√(k (n - k)), so that each split leaves the same scatter.
    for (std::size_t n = 3; n < 300; ++n) {
        const auto sumOfLowest = [n](std::size_t k) { return -std::sqrt(static_cast<double>(k * (n - k))); };
        std::vector<double> energies;
        for (std::size_t k = 0; k < n; ++k)
            energies.push_back(sumOfLowest(k + 1) - sumOfLowest(k));
        expectSameAsPlain(energies, std::to_string(n) + " lines");
        if (HasFatalFailure())
            return;
    }
}

TEST(EnergyThresholds, doNotDependOnTheOrderOfTheLines) {
    Random random(11);
    auto energies = mirrored(random, 200);
    const auto result = of(energies);
    std::shuffle(energies.begin(), energies.end(), random);
    EXPECT_EQ(of(energies).quietThreshold, result.quietThreshold);
    EXPECT_EQ(of(energies).loudThreshold, result.loudThreshold);
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

// The annotated transcript

EnergyThresholds thresholdsAt(double quiet, double loud) {
    EnergyThresholds thresholds;
    thresholds.quietThreshold = quiet;
    thresholds.loudThreshold = loud;
    return thresholds;
}

TEST(AnnotatedTranscript, hasALineForEachLine) {
    EXPECT_EQ(annotatedTranscript({line(125.5, 131.24, " And that was the winter we lost the boat.  ")},
                                  std::vector<double>{-20.0}, thresholdsAt(-40, -30)),
              "[125.5-131.2s] 🔊 And that was the winter we lost the boat.\n");
}

TEST(AnnotatedTranscript, marksByThresholdsThatBelongToTheLouderMark) {
    const std::vector<double> energies = {-30.0, -30.001, -40.0, -40.001};
    EXPECT_EQ(annotatedTranscript({line(0, 1, "a"), line(1, 2, "b"), line(2, 3, "c"), line(3, 4, "d")}, energies,
                                  thresholdsAt(-40, -30)),
              "[0.0-1.0s] 🔊 a\n[1.0-2.0s] 🔉 b\n[2.0-3.0s] 🔉 c\n[3.0-4.0s] 🔇 d\n");
}

TEST(AnnotatedTranscript, leavesOutLinesOfBlanksOnly) {
    const std::vector<double> energies = {-20.0, -20.0, -20.0};
    EXPECT_EQ(
        annotatedTranscript({line(0, 1, ""), line(1, 2, "   "), line(2, 3, " x ")}, energies, thresholdsAt(-40, -30)),
        "[2.0-3.0s] 🔊 x\n");
}

TEST(AnnotatedTranscript, trimsBlanksAloneAndKeepsTabs) {
    EXPECT_EQ(annotatedTranscript({line(0, 1, " \t ")}, std::vector<double>{-20.0}, thresholdsAt(-40, -30)),
              "[0.0-1.0s] 🔊 \t\n");
}

TEST(AnnotatedTranscript, ofNoLinesIsEmpty) {
    EXPECT_EQ(annotatedTranscript({}, std::vector<double>{}, thresholdsAt(-60, -60)), "");
}

} // namespace
} // namespace zuvo
