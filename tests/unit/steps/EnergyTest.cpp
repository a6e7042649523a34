#include "steps/Energy.h"
#include "support/SpecialNumbers.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace zuvo {
namespace {

using testing::DoubleNear;
using testing::ElementsAre;
using testing::IsEmpty;

/// 20 × log10(16384 ÷ 32768)
constexpr double halfScaleDb = -6.020599913279624;

/// 20 × log10(100 ÷ 32768)
constexpr double hundredDb = -50.30899869919435;

Samples constant(std::int16_t level, std::size_t seconds) {
    return Samples(seconds * levelSampleRate, level);
}

SourceFile source(const std::string& name, double start, double end) {
    return {name, "/m/" + name, start, end, end - start};
}

TranscriptSegment line(double start, double end, const std::string& text = "words") {
    return {start, end, text, "en"};
}

Json json(const char* text) {
    return *parseForeignJson(text);
}

// Sources

TEST(SourcesFromProbeCache, lieEndToEndByStartTimecode) {
    const auto sources = sourcesFromProbeCache(json(R"({
        "B.wav": {"path": "/m/B.wav", "duration": 30.5, "startTimecodeSeconds": 100.0},
        "A.wav": {"path": "/m/A.wav", "duration": 20, "startTimecodeSeconds": 200}})"));
    ASSERT_EQ(sources.size(), 2u);
    EXPECT_EQ(sources[0].name, "B.wav");
    EXPECT_EQ(sources[0].path, "/m/B.wav");
    EXPECT_EQ(sources[0].seqStart, 0.0);
    EXPECT_EQ(sources[0].seqEnd, 30.5);
    EXPECT_EQ(sources[0].duration, 30.5);
    EXPECT_EQ(sources[1].name, "A.wav");
    EXPECT_EQ(sources[1].seqStart, 30.5);
    EXPECT_EQ(sources[1].seqEnd, 50.5);
}

TEST(SourcesFromProbeCache, countAMissingOrNullTimecodeAsZeroAndOrderEqualOnesByName) {
    const auto sources = sourcesFromProbeCache(json(R"({
        "z.wav": {"duration": 10},
        "late.wav": {"duration": 10, "startTimecodeSeconds": 0.5},
        "b.wav": {"duration": 10, "startTimecodeSeconds": null},
        "a.wav": {"duration": 10, "startTimecodeSeconds": "7"},
        "early.wav": {"duration": 10, "startTimecodeSeconds": -1}})"));
    std::vector<std::string> names;
    for (const auto& one : sources)
        names.push_back(one.name);
    EXPECT_THAT(names, ElementsAre("early.wav", "a.wav", "b.wav", "z.wav", "late.wav"));
}

TEST(SourcesFromProbeCache, aSourceUnderTenSecondsTakesNoPlace) {
    const auto sources = sourcesFromProbeCache(json(R"({
        "a.wav": {"duration": 9.999}, "b.wav": {"duration": 10.0}, "c.wav": {}, "d.wav": {"duration": "60"}})"));
    ASSERT_EQ(sources.size(), 1u);
    EXPECT_EQ(sources[0].name, "b.wav");
    EXPECT_EQ(sources[0].seqStart, 0.0);
    EXPECT_EQ(sources[0].path, "");
}

TEST(SourcesFromProbeCache, areNoneUnlessTheTreeIsAnObjectOfObjects) {
    for (const char* text : {"{}", "[]", "null", "3", R"([{"duration": 60}])",
                             R"({"a.wav": {"duration": 60}, "b.wav": 3})", R"({"a.wav": {"duration": 60}, "b": null})"})
        EXPECT_THAT(sourcesFromProbeCache(json(text)), IsEmpty()) << text;
}

TEST(SourceAt, theEndOfASourceIsNotPartOfIt) {
    const std::vector<SourceFile> sources = {source("A", 0, 20), source("B", 20, 31)};
    EXPECT_EQ(sourceAt(sources, 0.0), &sources[0]);
    EXPECT_EQ(sourceAt(sources, 19.999), &sources[0]);
    EXPECT_EQ(sourceAt(sources, 20.0), &sources[1]);
    EXPECT_EQ(sourceAt(sources, 31.0), nullptr);
    EXPECT_EQ(sourceAt(sources, -0.001), nullptr);
    EXPECT_EQ(sourceAt(sources, notANumber), nullptr);
    EXPECT_EQ(sourceAt({}, 0.0), nullptr);
}

// Levels

TEST(ComputeRMS, isRelativeToFullScale) {
    EXPECT_DOUBLE_EQ(computeRMS(constant(-32768, 1), 0.0, 1.0), 0.0);
    EXPECT_THAT(computeRMS(constant(16384, 1), 0.0, 1.0), DoubleNear(halfScaleDb, 1e-12));
    // Mean square of 3 and 4 hundred: 125000, 20 × log10(353.5533906 ÷ 32768)
    EXPECT_THAT(computeRMS(Samples{300, 400}, 0.0, 1.0), DoubleNear(-39.33989857, 1e-7));
}

TEST(ComputeRMS, anAllZeroSpanGivesSilence) {
    EXPECT_EQ(computeRMS(constant(0, 1), 0.0, 1.0), -60.0);
}

TEST(ComputeRMS, anRmsBelowOneGivesSilence) {
    EXPECT_EQ(computeRMS(Samples{0, 1, 0, -1}, 0.0, 1.0), -60.0);
}

TEST(ComputeRMS, anRmsOfExactlyOneIsMeasured) {
    // 20 × log10(1 ÷ 32768): the floor stands below it as a value, not above it as a limit.
    EXPECT_THAT(computeRMS(Samples{1, -1, 1}, 0.0, 1.0), DoubleNear(-90.30899869919435, 1e-9));
}

TEST(ComputeRMS, anEmptySampleListGivesSilence) {
    EXPECT_EQ(computeRMS({}, 0.0, 10.0), -60.0);
    EXPECT_EQ(computeRMS({}, notANumber, -infinity), -60.0);
}

TEST(ComputeRMS, truncatesBothEndsToSamples) {
    Samples pcm(10, 0);
    pcm[2] = 100;
    // 2.9 and 3.9 ms: the span is sample 2 alone.
    EXPECT_THAT(computeRMS(pcm, 0.0029, 0.0039), DoubleNear(hundredDb, 1e-9));
    EXPECT_EQ(computeRMS(pcm, 0.0031, 0.0099), -60.0);
}

TEST(ComputeRMS, isThatOfTheSquaresAddedUpAsDoubles) {
    std::mt19937 random(3);
    std::uniform_int_distribution<int> level(-32768, 32767);
    Samples samples(5 * levelSampleRate);
    std::generate(samples.begin(), samples.end(), [&] { return static_cast<std::int16_t>(level(random)); });
    double squares = 0.0;
    for (const double sample : samples)
        squares += sample * sample;
    EXPECT_EQ(computeRMS(samples, 0, 5), 20.0 * std::log10(std::sqrt(squares / 5000.0) / 32768.0));
}

TEST(ComputeRMS, takesInHoursAtFullScale) {
    constexpr std::size_t threeHours = 3 * 3600;
    EXPECT_EQ(computeRMS(constant(-32768, threeHours), 0, threeHours), 0.0);
}

TEST(ComputeRMS, holdsAtLeastOneSample) {
    Samples pcm(10, 0);
    pcm[2] = 100;
    EXPECT_THAT(computeRMS(pcm, 0.0025, 0.0025), DoubleNear(hundredDb, 1e-9));
    EXPECT_THAT(computeRMS(pcm, 0.0025, 0.0), DoubleNear(hundredDb, 1e-9));
}

TEST(ComputeRMS, isHeldWithinTheSamples) {
    Samples pcm(10, 0);
    pcm.front() = 100;
    EXPECT_THAT(computeRMS(pcm, -5.0, -1.0), DoubleNear(hundredDb, 1e-9));
    pcm.front() = 0;
    pcm.back() = 100;
    EXPECT_THAT(computeRMS(pcm, 99.0, 100.0), DoubleNear(hundredDb, 1e-9));
    EXPECT_THAT(computeRMS(pcm, 0.0095, 100.0), DoubleNear(hundredDb, 1e-9));
}

TEST(ComputeRMS, survivesTimesThatAreNone) {
    const auto pcm = constant(16384, 1);
    for (const double start : {notANumber, infinity, -infinity, 1e300, -1e300})
        for (const double end : {notANumber, infinity, -infinity, 1e300, -1e300})
            EXPECT_THAT(computeRMS(pcm, start, end), DoubleNear(halfScaleDb, 1e-9)) << start << " " << end;
}

TEST(ComputeRMS, countsSamplesByTheRateGiven) {
    const Samples pcm = {0, 0, 100, 100};
    EXPECT_THAT(computeRMS(pcm, 1.0, 2.0, 2), DoubleNear(hundredDb, 1e-9));
}

TEST(EnergyBetween, aLineAtAFileBoundaryBelongsToTheLaterFile) {
    const std::vector<SourceFile> sources = {source("A", 0, 20), source("B", 20, 40)};
    const SampleStore samples = {{"A", constant(0, 20)}, {"B", constant(16384, 20)}};
    EXPECT_EQ(energyBetween(19.5, 20.0, sources, samples), -60.0);
    EXPECT_THAT(energyBetween(20.0, 21.0, sources, samples), DoubleNear(halfScaleDb, 1e-9));
}

TEST(EnergyBetween, endsAtItsFilesEnd) {
    const std::vector<SourceFile> sources = {source("A", 0, 20), source("B", 20, 40)};
    auto first = constant(16384, 20);
    first.resize(30 * levelSampleRate, 0); // a file that is longer than its probe said
    const SampleStore samples = {{"A", first}, {"B", constant(0, 20)}};
    EXPECT_THAT(energyBetween(19.0, 25.0, sources, samples), DoubleNear(halfScaleDb, 1e-9));
}

TEST(EnergyBetween, measuresFromTheSourcesOwnStart) {
    const std::vector<SourceFile> sources = {source("A", 0, 20), source("B", 20, 40)};
    auto second = constant(0, 20);
    std::fill(second.begin() + 5000, second.begin() + 6000, std::int16_t{100});
    const SampleStore samples = {{"B", second}};
    EXPECT_THAT(energyBetween(25.0, 26.0, sources, samples), DoubleNear(hundredDb, 1e-9));
    EXPECT_EQ(energyBetween(26.0, 27.0, sources, samples), -60.0);
}

TEST(EnergyBetween, isSilenceWithoutASourceOrSamples) {
    const std::vector<SourceFile> sources = {source("A", 0, 20), source("B", 20, 40)};
    const SampleStore samples = {{"B", {}}};
    EXPECT_EQ(energyBetween(1.0, 2.0, sources, samples), -60.0);
    EXPECT_EQ(energyBetween(21.0, 22.0, sources, samples), -60.0);
    EXPECT_EQ(energyBetween(41.0, 42.0, sources, samples), -60.0);
    EXPECT_EQ(energyBetween(1.0, 2.0, {}, samples), -60.0);
}

TEST(LineEnergies, withoutProbeDataEveryLineFallsIntoTheFirstFileThatIsLongEnough) {
    const std::vector<SourceFile> sources = {source("short", 0, 10), source("long", 0, 30)};
    const SampleStore samples = {{"short", constant(100, 10)}, {"long", constant(16384, 30)}};
    EXPECT_THAT(
        lineEnergies({line(0, 5), line(9.5, 12), line(10, 12), line(35, 36)}, sources, samples),
        ElementsAre(DoubleNear(hundredDb, 1e-9), DoubleNear(hundredDb, 1e-9), DoubleNear(halfScaleDb, 1e-9), -60.0));
}

TEST(LineEnergies, areOnePerLineEvenForAnEmptyText) {
    const std::vector<SourceFile> sources = {source("A", 0, 20)};
    const SampleStore samples = {{"A", constant(16384, 20)}};
    EXPECT_THAT(lineEnergies({line(0, 5, ""), line(5, 6, "  ")}, sources, samples),
                ElementsAre(DoubleNear(halfScaleDb, 1e-9), DoubleNear(halfScaleDb, 1e-9)));
}

} // namespace
} // namespace zuvo
