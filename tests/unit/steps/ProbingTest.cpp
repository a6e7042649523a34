#include "steps/Probing.h"

#include "support/GoldenFile.h"
#include "support/SpecialNumbers.h"

#include <gtest/gtest.h>

#include <limits>

namespace zuvo {
namespace {

ProbeResult probed(const std::string& output) {
    const auto result = probeResultFrom("/footage/day 1/a.wav", output);
    EXPECT_TRUE(result) << output;
    return result.value_or(ProbeResult{});
}

ProbeResult probedFormat(const std::string& format) {
    return probed(R"({"format":{)" + format + R"(},"streams":[{"codec_type":"audio","sample_rate":"48000"}]})");
}

ProbeResult probedStreams(const std::string& streams) {
    return probed(R"({"format":{},"streams":[)" + streams + "]}");
}

TEST(Probing, whatIsNoJsonObjectGivesNoResult) {
    for (const auto* output : {"", "ffprobe: not found", "[]", "7", "null", "{", R"({"format":{}} rest)"})
        EXPECT_FALSE(probeResultFrom("/a.wav", output)) << output;
}

TEST(Probing, anAnswerWithoutAnyKnownKeyGivesAnEmptyResult) {
    for (const auto* output : {"{}", R"({"format":null,"streams":null})", R"({"format":[],"streams":{}})",
                               R"({"format":{"tags":7,"duration":12.5},"streams":[]})",
                               R"({"streams":[{},{"codec_type":7},{"codec_type":"subtitle"}]})"}) {
        const auto result = probed(output);
        EXPECT_EQ(result.path, "/footage/day 1/a.wav");
        EXPECT_EQ(result.filename, "a.wav");
        EXPECT_EQ(result.duration, 0.0) << output;
        EXPECT_FALSE(result.startTimecode || result.startTimecodeSeconds || result.sampleRate || result.fps ||
                     result.codec || result.channels || result.bitDepth)
            << output;
        EXPECT_FALSE(result.hasVideo || result.hasAudio) << output;
    }
}

TEST(Probing, theDurationIsATextThatParsesAsADouble) {
    EXPECT_EQ(probedFormat(R"("duration":"1200.480000")").duration, 1200.48);
    EXPECT_EQ(probedFormat(R"("duration":"N/A")").duration, 0.0);
    EXPECT_EQ(probedFormat(R"("duration":"nan")").duration, 0.0);
    EXPECT_EQ(probedFormat(R"("duration":"1e999")").duration, 0.0);
    EXPECT_EQ(probedFormat(R"("duration":12.5)").duration, 0.0);
}

TEST(Probing, aTimeReferenceAloneGivesTheStartTimecode) {
    const auto result = probedFormat(R"("tags":{"time_reference":"172800000"})");
    EXPECT_EQ(result.startTimecodeSeconds, 3600.0);
    EXPECT_EQ(result.startTimecode, "01:00:00:00");
}

TEST(Probing, aDropFrameTimecodeStaysAsItStandsAndCountsAt24) {
    const auto result = probed(R"({"format":{"tags":{"timecode":"01:00:00;12"}},
        "streams":[{"codec_type":"video","r_frame_rate":"30000/1001"}]})");
    EXPECT_EQ(result.startTimecode, "01:00:00;12");
    EXPECT_EQ(result.startTimecodeSeconds, 3600.5);
    ASSERT_TRUE(result.fps);
    EXPECT_NEAR(*result.fps, 29.97002997, 1e-8);
}

TEST(Probing, aTimecodeOfThreeFieldsGivesZeroSecondsAndStaysSet) {
    const auto result = probedFormat(R"("tags":{"timecode":"01:00:00"})");
    EXPECT_EQ(result.startTimecode, "01:00:00");
    EXPECT_EQ(result.startTimecodeSeconds, 0.0);
}

TEST(Probing, aTimecodeComesBeforeATimeReference) {
    const auto result = probedFormat(R"("tags":{"time_reference":"172800000","timecode":"00:00:02:00"})");
    EXPECT_EQ(result.startTimecode, "00:00:02:00");
    EXPECT_EQ(result.startTimecodeSeconds, 2.0);
}

TEST(Probing, aTimecodeThatIsNoTextLeavesTheTimeReference) {
    EXPECT_EQ(probedFormat(R"("tags":{"time_reference":"48000","timecode":7})").startTimecode, "00:00:01:00");
}

TEST(Probing, aStreamsOwnTagsAndOtherSpellingsAreNotRead) {
    const auto result = probed(R"({"format":{"tags":{"TIMECODE":"01:00:00:00"},"timecode":"01:00:00:00"},
        "streams":[{"codec_type":"video","tags":{"timecode":"01:00:00:00"}}]})");
    EXPECT_FALSE(result.startTimecode);
    EXPECT_FALSE(result.startTimecodeSeconds);
}

TEST(Probing, aTimeReferenceIsDividedByTheFirstStreamsRateWhateverItsKind) {
    const auto result = probed(R"({"format":{"tags":{"time_reference":"96000"}},
        "streams":[{"codec_type":"data","sample_rate":"96000"},{"codec_type":"audio","sample_rate":"48000"}]})");
    EXPECT_EQ(result.startTimecodeSeconds, 1.0);
    EXPECT_EQ(result.sampleRate, 48000);
}

TEST(Probing, aTimeReferenceWithoutAUsableRateLeavesBothEmpty) {
    const std::string head = R"({"format":{"tags":{"time_reference":"96000"}},"streams":)";
    for (const auto* streams :
         {"[]", "[{}]", R"([{"sample_rate":"0"}])", R"([{"sample_rate":"-48000"}])", R"([{"sample_rate":48000}])",
          R"([{"codec_type":"video"},{"sample_rate":"48000"}])", R"([{"sample_rate":"48000"},7])"}) {
        const auto result = probed(head + streams + "}");
        EXPECT_FALSE(result.startTimecode) << streams;
        EXPECT_FALSE(result.startTimecodeSeconds) << streams;
    }
    EXPECT_FALSE(probedFormat(R"("tags":{"time_reference":96000})").startTimecode);
    EXPECT_FALSE(probedFormat(R"("tags":{"time_reference":"many"})").startTimecode);
}

TEST(Probing, aHugeTimeReferenceSaturatesAndAnInfiniteQuotientLeavesBothEmpty) {
    const auto huge = probedFormat(R"("tags":{"time_reference":"1e300"})");
    ASSERT_TRUE(huge.startTimecodeSeconds);
    EXPECT_DOUBLE_EQ(*huge.startTimecodeSeconds, 1e300 / 48000.0);
    // 9223372036854775807 s: 2562047788015215 h 30 min 7 s, the frames at the same end of the range.
    EXPECT_EQ(huge.startTimecode, "2562047788015215:30:07:9223372036854775807");
    const auto infinite =
        probed(R"({"format":{"tags":{"time_reference":"1e308"}},"streams":[{"sample_rate":"1e-9"}]})");
    EXPECT_FALSE(infinite.startTimecode);
    EXPECT_FALSE(infinite.startTimecodeSeconds);
    EXPECT_EQ(probedFormat(R"("tags":{"timecode":"1e308:1e308:0:0"})").startTimecodeSeconds, 0.0);
}

TEST(Probing, aFrameRateNeedsTwoNumbersAndADivisorAboveZero) {
    for (const auto* rate : {"0/0", "25/0", "25", "25/1/1", "", "/", "25/", "/1", "a/b", "25/-1", "1e308/1e-9"})
        EXPECT_FALSE(probedStreams(R"({"codec_type":"video","r_frame_rate":")" + std::string(rate) + R"("})").fps)
            << rate;
    EXPECT_FALSE(probedStreams(R"({"codec_type":"video","r_frame_rate":25})").fps);
    EXPECT_EQ(probedStreams(R"({"codec_type":"video","r_frame_rate":"25/1"})").fps, 25.0);
    EXPECT_EQ(probedStreams(R"({"codec_type":"video","r_frame_rate":"0/1"})").fps, 0.0);
}

TEST(Probing, theLastVideoStreamWithARateWins) {
    const auto result = probedStreams(R"({"codec_type":"video","r_frame_rate":"25/1"},
        {"codec_type":"video","r_frame_rate":"50/1"},{"codec_type":"video","r_frame_rate":"0/0"},
        {"codec_type":"audio","r_frame_rate":"10/1"})");
    EXPECT_EQ(result.fps, 50.0);
    EXPECT_TRUE(result.hasVideo);
    EXPECT_TRUE(result.hasAudio);
}

TEST(Probing, ofTwoAudioStreamsTheFirstIsReported) {
    const auto result = probedStreams(
        R"({"codec_type":"audio","codec_name":"pcm_s16le","sample_rate":"48000","channels":1,"bits_per_sample":16},
        {"codec_type":"audio","codec_name":"aac","sample_rate":"44100","channels":2,"bits_per_sample":0})");
    EXPECT_EQ(result.codec, "pcm_s16le");
    EXPECT_EQ(result.sampleRate, 48000);
    EXPECT_EQ(result.channels, 1);
    EXPECT_EQ(result.bitDepth, 16);
    EXPECT_TRUE(result.hasAudio);
    EXPECT_FALSE(result.hasVideo);
}

TEST(Probing, theFirstAudioStreamThatCarriesAValueGivesIt) {
    const auto result = probedStreams(R"({"codec_type":"audio","sample_rate":48000,"channels":"2"},
        {"codec_type":"audio","codec_name":"aac","sample_rate":"44100","channels":2,"bits_per_sample":0})");
    EXPECT_EQ(result.codec, "aac");
    EXPECT_EQ(result.sampleRate, 44100);
    EXPECT_EQ(result.channels, 2);
    EXPECT_EQ(result.bitDepth, 0);
}

TEST(Probing, theSampleRateIsATextThatParsesAsAnInteger) {
    for (const auto* rate : {"48000", R"("48000.0")", R"(" 48000")", R"("99999999999999999999")", "null"})
        EXPECT_FALSE(probedStreams(R"({"codec_type":"audio","sample_rate":)" + std::string(rate) + "}").sampleRate)
            << rate;
}

TEST(Probing, aCountWithAFractionOrATruthValueIsMissing) {
    for (const auto* count : {"3.7", "true", R"("2")", "null", "1e300", "18446744073709551615"}) {
        const auto result = probedStreams(R"({"codec_type":"audio","channels":)" + std::string(count) +
                                          R"(,"bits_per_sample":)" + count + "}");
        EXPECT_FALSE(result.channels) << count;
        EXPECT_FALSE(result.bitDepth) << count;
    }
    EXPECT_EQ(probedStreams(R"({"codec_type":"audio","channels":3.0})").channels, 3);
}

TEST(Probing, aMissingBitDepthComesFromTheCodecsName) {
    const auto depthOf = [](const std::string& rest) {
        return probedStreams(R"({"codec_type":"audio")" + rest + "}").bitDepth;
    };
    EXPECT_EQ(depthOf(R"(,"codec_name":"pcm_s24le")"), 24);
    EXPECT_EQ(depthOf(R"(,"codec_name":"pcm_s16be")"), 16);
    EXPECT_EQ(depthOf(R"(,"codec_name":"pcm_s32le")"), 32);
    EXPECT_EQ(depthOf(R"(,"codec_name":"s32_s16_s24")"), 24);
    EXPECT_EQ(depthOf(R"(,"codec_name":"s32_s16")"), 16);
    EXPECT_EQ(depthOf(R"(,"codec_name":"pcm_s24le","bits_per_sample":"16")"), 24);
    EXPECT_EQ(depthOf(R"(,"codec_name":"pcm_s24le","bits_per_sample":3.7)"), 24);
    EXPECT_EQ(depthOf(R"(,"codec_name":"aac")"), std::nullopt);
    EXPECT_EQ(depthOf(""), std::nullopt);
}

TEST(Probing, aStatedBitDepthOfZeroStays) {
    EXPECT_EQ(probedStreams(R"({"codec_type":"audio","codec_name":"pcm_s24le","bits_per_sample":0})").bitDepth, 0);
}

TEST(Probing, oneElementThatIsNoObjectMakesNoListOfStreams) {
    EXPECT_FALSE(probedStreams(R"({"codec_type":"audio"},7)").hasAudio);
}

TEST(ProbeCache, holdsAllTwelveKeysWithNullForEmptyOnes) {
    ProbeResult sound;
    sound.path = "/footage/día 1/interview.wav";
    sound.filename = "interview.wav";
    sound.duration = 300.0;
    sound.sampleRate = 48000;
    sound.codec = "pcm_s24le";
    sound.hasAudio = true;
    sound.channels = 2;
    sound.bitDepth = 24;
    ProbeResult picture;
    picture.path = "/footage/B-cam \"2\".mov";
    picture.filename = "B-cam \"2\".mov";
    picture.duration = 12.5;
    picture.startTimecode = "10:00:00;12";
    picture.startTimecodeSeconds = 36000.5;
    picture.fps = 25.0;
    picture.hasVideo = true;
    const auto text = probeCacheText({{sound.filename, sound}, {picture.filename, picture}});
    ASSERT_TRUE(text);
    tests::expectGolden(*text, "cache/probe_results.json");
}

TEST(ProbeCache, aNumberThatJsonCannotWriteGivesNothing) {
    ProbeResult result;
    result.fps = infinity;
    EXPECT_FALSE(probeCacheText({{"a.wav", result}}));
}

TEST(ProbeLogLine, namesWhatIsKnown) {
    ProbeResult result;
    result.filename = "a.wav";
    result.duration = 3725.9;
    EXPECT_EQ(probeLogLine(result), "  a.wav: 62:05, TC: none, unknown");
    result.startTimecode = "01:00:00;12";
    result.sampleRate = 48000;
    EXPECT_EQ(probeLogLine(result), "  a.wav: 62:05, TC: 01:00:00;12, 48000Hz");
}

TEST(TimecodeToSeconds, readsFourNumbers) {
    EXPECT_EQ(timecodeToSeconds("01:02:03:12", 24.0), 3723.5);
    EXPECT_EQ(timecodeToSeconds("01;02;03;12", 24.0), 3723.5);
    EXPECT_EQ(timecodeToSeconds("0:0:1.5:0", 24.0), 1.5);
    EXPECT_EQ(timecodeToSeconds("00:00:00:15", 30.0), 0.5);
    EXPECT_EQ(timecodeToSeconds("-1:0:0:0", 24.0), -3600.0);
}

TEST(TimecodeToSeconds, givesZeroForAnythingElse) {
    for (const auto* text : {"", ":", "01:00:00", "01:00:00:00:00", "01:00:00:", ":01:00:00", "aa:00:00:00",
                             "01:00:00: 1", "01:00:00.12", "nan:0:0:0", "inf:0:0:0", "1e308:0:0:0"})
        EXPECT_EQ(timecodeToSeconds(text, 24.0), 0.0) << text;
    EXPECT_EQ(timecodeToSeconds("01:00:00:12", 0.0), 0.0);
    EXPECT_EQ(timecodeToSeconds("01:00:00:00", 0.0), 0.0);
    EXPECT_EQ(timecodeToSeconds("01:00:00:12", notANumber), 0.0);
}

TEST(SecondsToTimecode, truncatesEveryField) {
    EXPECT_EQ(secondsToTimecode(0.0, 24.0), "00:00:00:00");
    EXPECT_EQ(secondsToTimecode(3600.5, 24.0), "01:00:00:12");
    EXPECT_EQ(secondsToTimecode(3723.98, 24.0), "01:02:03:23");
    EXPECT_EQ(secondsToTimecode(59.9999, 24.0), "00:00:59:23");
    EXPECT_EQ(secondsToTimecode(360000.0, 24.0), "100:00:00:00");
}

TEST(SecondsToTimecode, saturatesOnValuesBeyondAllTimecodes) {
    EXPECT_EQ(secondsToTimecode(notANumber, 24.0), "00:00:00:00");
    EXPECT_EQ(secondsToTimecode(infinity, 24.0), "2562047788015215:30:07:9223372036854775807");
    EXPECT_EQ(secondsToTimecode(-infinity, 24.0), "-2562047788015215:-30:-8:-9223372036854775808");
}

TEST(FormatDuration, doesNotFoldMinutesIntoHours) {
    EXPECT_EQ(formatDuration(3725.0), "62:05");
    EXPECT_EQ(formatDuration(0.0), "0:00");
    EXPECT_EQ(formatDuration(59.9), "0:59");
    EXPECT_EQ(formatDuration(60.0), "1:00");
}

TEST(FormatDuration, saturates) {
    EXPECT_EQ(formatDuration(notANumber), "0:00");
    // 9223372036854775807 = 153722867280912930 × 60 + 7
    EXPECT_EQ(formatDuration(infinity), "153722867280912930:07");
}

} // namespace
} // namespace zuvo
