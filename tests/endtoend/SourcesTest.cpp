// What ffprobe tells of real files, and the order of the sources that follows from it.

#include "endtoend/InProcess.h"
#include "endtoend/MineTest.h"

namespace zuvo::endtoend {
namespace {

using testing::HasSubstr;
using testing::Optional;

class SourcesTest : public MineTest {
protected:
    InProcess inProcess{world};

    /// Half a second of a tone, with a black picture of that rate if one is given.
    ProbeResult probed(const std::string& name, const std::vector<std::string>& options,
                       const std::string& frameRate = {}) {
        std::vector<std::string> arguments;
        if (!frameRate.empty())
            arguments = {"-f", "lavfi", "-i", "color=c=black:s=32x32:r=" + frameRate + ":d=0.5"};
        arguments.insert(arguments.end(), {"-f", "lavfi", "-i", "sine=300:sample_rate=48000:duration=0.5"});
        arguments.insert(arguments.end(), options.begin(), options.end());
        arguments.push_back(world.media(name));
        ffmpeg(arguments);
        return inProcess.probe(world.media(name));
    }
};

TEST_F(SourcesTest, aMonoWavIsReadWhole) {
    const auto result = probed("mono.wav", {"-c:a", "pcm_s24le"});
    EXPECT_EQ(result.filename, "mono.wav");
    EXPECT_EQ(result.path, world.media("mono.wav"));
    EXPECT_DOUBLE_EQ(result.duration, 0.5);
    EXPECT_EQ(result.startTimecode, std::nullopt);
    EXPECT_THAT(result.codec, Optional(std::string("pcm_s24le")));
    EXPECT_THAT(result.sampleRate, Optional(48000));
    EXPECT_THAT(result.channels, Optional(1));
    EXPECT_THAT(result.bitDepth, Optional(24));
    EXPECT_TRUE(result.hasAudio);
    EXPECT_FALSE(result.hasVideo);
    EXPECT_EQ(result.fps, std::nullopt) << "0/0 is no rate";
}

TEST_F(SourcesTest, aFileOfSixChannelsHasSix) {
    EXPECT_THAT(probed("surround.wav", {"-ac", "6"}).channels, Optional(6));
}

TEST_F(SourcesTest, aBroadcastWaveStartsAtItsSampleCount) {
    const auto result =
        probed("bwf.wav", {"-c:a", "pcm_s16le", "-write_bext", "1", "-metadata", "time_reference=172800000"});
    EXPECT_THAT(result.startTimecodeSeconds, Optional(3600.0));
    EXPECT_THAT(result.startTimecode, Optional(std::string("01:00:00:00")));
}

TEST_F(SourcesTest, aTimecodeOfTheWholeFileIsReadAtTwentyFourFrames) {
    const auto result = probed("tagged.flac", {"-metadata", "timecode=01:00:00:12"});
    EXPECT_THAT(result.startTimecode, Optional(std::string("01:00:00:12")));
    EXPECT_THAT(result.startTimecodeSeconds, Optional(3600.5));
}

TEST_F(SourcesTest, aTimecodeOfAStreamAloneIsNone) {
    const auto result = probed("quicktime.mov", {"-timecode", "01:00:00:00", "-c:v", "mpeg4"}, "25");
    EXPECT_EQ(result.startTimecode, std::nullopt);
    EXPECT_EQ(result.startTimecodeSeconds, std::nullopt);
    EXPECT_TRUE(result.hasVideo);
    EXPECT_THAT(result.fps, Optional(25.0));
    EXPECT_THAT(result.bitDepth, Optional(0)) << "a compressed stream's depth is 0";
}

TEST_F(SourcesTest, aTimecodeTagInCapitalsIsNone) {
    EXPECT_EQ(probed("capitals.mkv", {"-metadata", "timecode=01:00:00:00"}, "25").startTimecode, std::nullopt);
}

TEST_F(SourcesTest, aDropFrameTimecodeIsKeptAndCountedAsIfNoneWereDropped) {
    const auto result =
        probed("drop.mxf", {"-timecode", "01:00:00;12", "-c:v", "mpeg2video", "-c:a", "pcm_s16le"}, "30000/1001");
    EXPECT_THAT(result.startTimecode, Optional(std::string("01:00:00;12")));
    EXPECT_THAT(result.startTimecodeSeconds, Optional(3600.5));
    ASSERT_TRUE(result.fps);
    EXPECT_NEAR(*result.fps, 29.97002997, 1e-8);
}

TEST_F(SourcesTest, aPictureWithoutSoundHasNoFormatOfSound) {
    ffmpeg({"-f", "lavfi", "-i", "color=c=black:s=32x32:r=25:d=0.5", "-c:v", "mpeg4", world.media("silent.mp4")});
    const auto result = inProcess.probe(world.media("silent.mp4"));
    EXPECT_TRUE(result.hasVideo);
    EXPECT_FALSE(result.hasAudio);
    EXPECT_EQ(result.codec, std::nullopt);
    EXPECT_EQ(result.sampleRate, std::nullopt);
}

TEST_F(SourcesTest, sourcesStandInOrderOfTheirTimecodeWhateverTheOrderGiven) {
    const auto late = givenFootage("a-late.flac", {"-metadata", "timecode=02:00:00:00"});
    const auto early = givenFootage("b-early.flac", {"-metadata", "timecode=01:00:00:00"});
    givenTranscript();
    givenStory({{4.5, 11.5, "One."}, {16.5, 23.5, "Two."}});
    mine({late, early});
    thenItEndsWith(0);
    thenLogHas({"  a-late.flac: 0:12, TC: 02:00:00:00, 8000Hz", "  b-early.flac: 0:12, TC: 01:00:00:00, 8000Hz"});
    thenLogHas({"📋 Source clip map: b-early.flac: 0.0s–12.0s, a-late.flac: 12.0s–24.0s"});
    const auto segments = jsonOf(world.cache("segments.json"));
    EXPECT_EQ(segments.at(0).at("sourceClip"), "b-early.flac");
    EXPECT_EQ(segments.at(1).at("sourceClip"), "a-late.flac");
    EXPECT_EQ(bytesOf(world.cache("concat.txt")), "file '" + late + "'\nfile '" + early + "'")
        << "the audio is joined in the order given";
}

TEST_F(SourcesTest, sourcesWithoutTimecodeStandInTheOrderGiven) {
    const auto first = givenFootage("z.wav");
    const auto second = givenFootage("a.wav");
    givenTranscript();
    givenStory({{4.5, 11.5, "One."}, {16.5, 23.5, "Two."}});
    mine({first, second});
    thenItEndsWith(0);
    thenLogHas({"📋 Source clip map: z.wav: 0.0s–12.0s, a.wav: 12.0s–24.0s"});
    EXPECT_EQ(jsonOf(world.cache("segments.json")).at(0).at("sourceClip"), "z.wav");
}

TEST_F(SourcesTest, aFileOfTenSecondsOrLessTakesNoPlaceAmongTheSources) {
    const auto first = givenFootage("first.wav");
    makeFootage(world.media("short.wav"), 10.0);
    const auto last = givenFootage("last.wav");
    givenTranscript();
    givenStory({{4.5, 11.5, "One."}});
    mine({first, world.media("short.wav"), last});
    thenItEndsWith(0);
    thenLogHas({"✓ Probed 3 files"});
    thenLogHas({"📋 Source clip map: first.wav: 0.0s–12.0s, last.wav: 12.0s–24.0s"});
}

} // namespace
} // namespace zuvo::endtoend
