#include "steps/EnergyAudit.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <random>

namespace zuvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The level of samples of 16384: half of full scale.
const double halfLevelDb = 20.0 * std::log10(0.5);

class EnergyAudit : public testing::Test {
protected:
    /// One source of 300 s: silent up to 100 s, at half scale from there on.
    EnergyAudit() {
        Samples pcm(300 * levelSampleRate, 0);
        std::fill(pcm.begin() + 100 * levelSampleRate, pcm.end(), std::int16_t{16384});
        samples["A.wav"] = std::move(pcm);
    }

    static StorySegment segment(std::int64_t index, double start, double end) {
        return {index, start, end, "source", "was gesagt wird", "what is said", "One"};
    }

    AuditedStory audit(std::vector<StorySegment> segments, double quietThreshold = -40.0) {
        MiningResults reply;
        reply.segments = std::move(segments);
        reply.structure = {{{"Act 1", {0, 1, 2}}}, 298.5};
        reply.subtitles = {{1.0, 2.0, "card"}};
        reply.estimatedDuration = 299.5;
        return auditEnergy(std::move(reply), sources, samples, quietThreshold);
    }

    static std::vector<std::string> texts(const AuditedStory& story) {
        std::vector<std::string> lines;
        for (const auto& line : story.lines)
            lines.push_back(line.text);
        return lines;
    }

    std::vector<SourceFile> sources = {{"A.wav", "/m/A.wav", 0.0, 300.0, 300.0}};
    SampleStore samples;
};

TEST_F(EnergyAudit, withNoTrimmingAndNoRejectionSaysNothing) {
    const auto story = audit({segment(0, 100, 110), segment(1, 120, 150)});
    EXPECT_THAT(story.lines, IsEmpty());
    EXPECT_EQ(story.results.segments.size(), 2u);
}

TEST_F(EnergyAudit, aSegmentOf45SecondsLosesItsTailAndKeepsItsText) {
    const auto story = audit({segment(4, 100, 145)});
    ASSERT_EQ(story.results.segments.size(), 1u);
    EXPECT_EQ(story.results.segments[0].startTime, 100.0);
    EXPECT_EQ(story.results.segments[0].endTime, 130.0);
    EXPECT_EQ(story.results.segments[0].transcript, "was gesagt wird");
    EXPECT_EQ(story.results.segments[0].chapter, "One");
    EXPECT_THAT(texts(story), ElementsAre("  ⚠ Trimming segment 4 from 45.0s to 30s"));
    EXPECT_EQ(story.lines[0].color, "accent");
}

TEST_F(EnergyAudit, aSegmentOfExactly30SecondsIsNotTrimmed) {
    EXPECT_THAT(audit({segment(0, 100, 130)}).lines, IsEmpty());
}

TEST_F(EnergyAudit, aTrimmedSegmentIsMeasuredOverTheShorterSpan) {
    // 80 to 110 holds 10 s of sound: 20 × log10(0.5 × √(1/3)) = -10.79 dB; 80 to 170 would hold 70 of 90 s, -7.11 dB.
    const auto story = audit({segment(0, 80, 170)}, -9.0);
    EXPECT_THAT(texts(story),
                ElementsAre("  ⚠ Trimming segment 0 from 90.0s to 30s", "  ✗ Reject seg 0: RMS -10.8dB < -9.0dB",
                            "  Energy audit: 0 passed, 1 rejected"));
}

TEST_F(EnergyAudit, aSegmentOf4Point9SecondsIsDroppedAndCountedWithoutARejectLine) {
    const auto story = audit({segment(0, 100, 104.9), segment(1, 110, 115)});
    ASSERT_EQ(story.results.segments.size(), 1u);
    EXPECT_EQ(story.results.segments[0].startTime, 110.0);
    EXPECT_THAT(texts(story), ElementsAre("  Energy audit: 1 passed, 1 rejected"));
    EXPECT_EQ(story.lines[0].color, "dim");
}

TEST_F(EnergyAudit, aSegmentThatEndsBeforeItStartsIsDropped) {
    EXPECT_THAT(audit({segment(0, 150, 120)}).results.segments, IsEmpty());
}

TEST_F(EnergyAudit, aRejectedSegmentIsNamedByItsOwnIndex) {
    const auto story = audit({segment(17, 10, 20)}, -40.25);
    EXPECT_THAT(texts(story),
                ElementsAre("  ✗ Reject seg 17: RMS -60.0dB < -40.2dB", "  Energy audit: 0 passed, 1 rejected"));
    EXPECT_EQ(story.lines[0].color, "accent");
    EXPECT_EQ(story.lines[1].color, "dim");
}

TEST_F(EnergyAudit, aSegmentAtExactlyTheThresholdPasses) {
    EXPECT_EQ(audit({segment(0, 100, 110)}, halfLevelDb).results.segments.size(), 1u);
    EXPECT_THAT(audit({segment(0, 100, 110)}, std::nextafter(halfLevelDb, 0.0)).results.segments, IsEmpty());
}

TEST_F(EnergyAudit, theRestIsNumberedByPositionWhileActsKeepTheNumbersOfTheReply) {
    const auto story = audit({segment(0, 100, 110), segment(1, 10, 20), segment(2, 200, 210)});
    ASSERT_EQ(story.results.segments.size(), 2u);
    EXPECT_EQ(story.results.segments[0].index, 0);
    EXPECT_EQ(story.results.segments[0].startTime, 100.0);
    EXPECT_EQ(story.results.segments[1].index, 1);
    EXPECT_EQ(story.results.segments[1].startTime, 200.0);
    EXPECT_THAT(story.results.structure.acts.at(0).segments, ElementsAre(0, 1, 2));
}

TEST_F(EnergyAudit, segmentsAreNumberedByPositionEvenIfNoneIsRejected) {
    const auto story = audit({segment(7, 100, 110), segment(7, 200, 210)});
    EXPECT_EQ(story.results.segments.at(0).index, 0);
    EXPECT_EQ(story.results.segments.at(1).index, 1);
}

TEST_F(EnergyAudit, leavesSubtitlesAndStatedDurationsAsTheReplyGaveThem) {
    const auto story = audit({segment(0, 10, 20)});
    EXPECT_EQ(story.results.structure.totalDuration, 298.5);
    EXPECT_EQ(story.results.estimatedDuration, 299.5);
    ASSERT_EQ(story.results.subtitles.size(), 1u);
    EXPECT_EQ(story.results.subtitles[0].text, "card");
}

TEST_F(EnergyAudit, allTrimmingComesBeforeAllRejecting) {
    const auto story = audit({segment(0, 10, 20), segment(1, 100, 140), segment(2, 30, 40), segment(3, 200, 233.25)});
    EXPECT_THAT(texts(story),
                ElementsAre("  ⚠ Trimming segment 1 from 40.0s to 30s", "  ⚠ Trimming segment 3 from 33.2s to 30s",
                            "  ✗ Reject seg 0: RMS -60.0dB < -40.0dB", "  ✗ Reject seg 2: RMS -60.0dB < -40.0dB",
                            "  Energy audit: 2 passed, 2 rejected"));
}

TEST_F(EnergyAudit, withAllSegmentsRejectedTheStoryIsEmptyAndNoFailure) {
    const auto story = audit({segment(0, 10, 20), segment(1, 30, 31)});
    EXPECT_THAT(story.results.segments, IsEmpty());
    EXPECT_EQ(texts(story).back(), "  Energy audit: 0 passed, 2 rejected");
}

TEST_F(EnergyAudit, aSegmentInNoSourcePassesOnlyIfNoAudioWasMeasuredAtAll) {
    EXPECT_THAT(audit({segment(0, 400, 410)}, -59.9).results.segments, IsEmpty());
    EXPECT_EQ(audit({segment(0, 400, 410)}, -60.0).results.segments.size(), 1u);
}

TEST_F(EnergyAudit, aSourceWithoutSamplesIsSilent) {
    samples["A.wav"].clear();
    EXPECT_THAT(audit({segment(0, 100, 110)}, -59.9).results.segments, IsEmpty());
    samples.clear();
    EXPECT_THAT(audit({segment(0, 100, 110)}, -59.9).results.segments, IsEmpty());
}

TEST_F(EnergyAudit, aSegmentIsMeasuredUpToItsFilesEnd) {
    sources = {{"A.wav", "/m/A.wav", 0.0, 105.0, 105.0}};
    std::fill(samples["A.wav"].begin() + 105 * levelSampleRate, samples["A.wav"].end(), std::int16_t{0});
    EXPECT_EQ(audit({segment(0, 100, 120)}, halfLevelDb).results.segments.size(), 1u);
}

TEST_F(EnergyAudit, survivesHugeTimes) {
    const auto story = audit({segment(0, -1e308, 1e308), segment(1, 1e300, 1e301), segment(2, 1e308, -1e308)});
    EXPECT_EQ(texts(story).back(), "  Energy audit: 0 passed, 3 rejected");
}

TEST_F(EnergyAudit, neverKeepsWhatIsTooShortTooLongOrTooQuiet) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> start(-20.0, 320.0);
    std::uniform_real_distribution<double> length(-5.0, 60.0);
    std::uniform_real_distribution<double> threshold(-60.0, 0.0);
    for (int round = 0; round < 50; ++round) {
        std::vector<StorySegment> segments;
        for (int i = 0; i < 20; ++i) {
            const double from = start(random);
            segments.push_back(segment(i * 3, from, from + length(random)));
        }
        const double quiet = threshold(random);
        const auto story = audit(segments, quiet);
        std::int64_t position = 0;
        for (const auto& kept : story.results.segments) {
            EXPECT_GE(kept.endTime - kept.startTime, 5.0);
            EXPECT_LE(kept.endTime - kept.startTime, 30.0 + 1e-9);
            EXPECT_GE(energyBetween(kept.startTime, kept.endTime, sources, samples), quiet);
            EXPECT_EQ(kept.index, position++);
        }
    }
}

} // namespace
} // namespace zuvo
