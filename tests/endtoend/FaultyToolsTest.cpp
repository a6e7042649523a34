// ffmpeg and ffprobe that die half-way, never let go of their output, or say things that no tool says.

#include "endtoend/InProcess.h"
#include "endtoend/MineTest.h"

#include <csignal>
#include <filesystem>

namespace zuvo::endtoend {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

class FaultyToolsTest : public MineTest {
protected:
    InProcess inProcess{world};
    std::string file;
    std::map<std::string, std::string> projectBefore;

    /// An earlier mine has left a project.
    void SetUp() override {
        file = givenFootage("talk.wav");
        givenTranscript();
        givenStory({{4.5, 11.5, "The first telling."}});
        inProcess.mine({file});
        ASSERT_EQ(inProcess.step(), PipelineStep::complete) << joined(inProcess.log());
        projectBefore = filesBelow(world.exports("talk"));
        givenStory({{4.5, 11.5, "The second telling."}});
    }

    void TearDown() override {
        // A tool of a tool, if a test left one.
        if (exists(world.folder / "grandchild"))
            ::kill(static_cast<pid_t>(std::stol(bytesOf(world.folder / "grandchild"))), SIGKILL);
    }

    /// In place of a tool a program of the shell, in which $real is the tool and $words are its words.
    void givenTool(std::string& tool, const std::string& program) {
        const auto path = world.folder.write("tools/" + tool.substr(tool.rfind('/') + 1),
                                             "#!/bin/sh\nreal=" + tool + "\nwords=\"$*\"\n" + program + "\n");
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        tool = path;
    }
    void givenFfmpeg(const std::string& program) { givenTool(inProcess.platform.environment.tools.ffmpeg, program); }
    void givenFfprobe(const std::string& program) { givenTool(inProcess.platform.environment.tools.ffprobe, program); }

    /// The tool does its work, loses the second half of its file, and is killed.
    static std::string killedHalfWay(const std::string& outputEnd) {
        return "\"$real\" \"$@\"; for last; do :; done\n"
               "case \"$last\" in *" +
               outputEnd + R"() /usr/bin/truncate -s 5000 "$last"; kill -9 $$ ;; esac)";
    }

    void mineAgain() {
        inProcess.forgetTranscripts();
        requestsBefore = world.services.requests().size();
        inProcess.mine({file});
    }

    void thenItEndsWithLine(PipelineStep step, const std::string& line) const {
        EXPECT_EQ(inProcess.step(), step) << joined(inProcess.log());
        EXPECT_EQ(inProcess.log().back(), line);
    }
    void thenItIsComplete() const { thenItEndsWithLine(PipelineStep::complete, "✓ Complete — we found gems!"); }
    void thenLogHasLine(const std::string& line) const { EXPECT_THAT(inProcess.log(), Contains(line)); }

    void thenTheEarlierProjectIsUntouched() const { EXPECT_EQ(filesBelow(world.exports("talk")), projectBefore); }
    void thenNothingWasPaidFor() const { EXPECT_EQ(world.services.requests().size(), requestsBefore); }
    void thenNoTemporaryFileIsLeft() const { EXPECT_THAT(filesBelow(world.temporary()), testing::IsEmpty()); }

    std::size_t requestsBefore = 0;
};

TEST_F(FaultyToolsTest, anExtractionKilledHalfWayFailsTheRunBeforeAnythingIsPaidFor) {
    givenFfmpeg(killedHalfWay("extracted_audio.wav"));
    mineAgain();
    thenItEndsWithLine(PipelineStep::error, "✗ Audio extraction failed");
    thenNothingWasPaidFor();
    thenTheEarlierProjectIsUntouched();
}

TEST_F(FaultyToolsTest, aCutKilledHalfWayCostsTheWordsOfItsMomentAlone) {
    givenFfmpeg(killedHalfWay("word_seg_0.wav"));
    mineAgain();
    thenItIsComplete();
    thenLogHasLine("  Word transcribing segment 1/1...");
    EXPECT_THAT(inProcess.log(), Not(Contains(HasSubstr("words transcribed across"))));
    EXPECT_EQ(world.services.requests().size(), requestsBefore + 2) << "half a sound is not sent";
}

TEST_F(FaultyToolsTest, soundKilledHalfWayIsNotMeasured) {
    givenFfmpeg(killedHalfWay(".raw"));
    mineAgain();
    thenItIsComplete();
    thenLogHasLine("  talk.wav: 0s extracted");
    thenLogHasLine("  Energy: 3 loud, 0 medium, 0 quiet — thresholds: quiet<-60dB<med<-60dB<loud");
    thenNoTemporaryFileIsLeft();
}

TEST_F(FaultyToolsTest, chunksKilledHalfWayAreLeftOut) {
    makeFootage(file, 301.0);
    givenFfmpeg(killedHalfWay("chunk_001.wav"));
    mineAgain();
    thenItIsComplete();
    thenLogHasLine("Split into 1 chunk for Whisper");
}

TEST_F(FaultyToolsTest, aProbeKilledHalfWayIsAFailedProbe) {
    givenFfprobe("case \"$words\" in *show_streams*) \"$real\" \"$@\" | /usr/bin/head -c 200; kill -9 $$ ;; esac\n"
                 "exec \"$real\" \"$@\"");
    mineAgain();
    thenItIsComplete();
    thenLogHasLine("  ⚠ Failed to probe talk.wav");
}

TEST_F(FaultyToolsTest, outputHeldOpenByAToolOfTheToolIsNotWaitedFor) {
    givenFfprobe("/usr/bin/sleep 1000 & echo $! > " + (world.folder / "grandchild") + "\nexec \"$real\" \"$@\"");
    mineAgain();
    thenItIsComplete();
    thenLogHasLine("✓ Probed 1 file");
}

TEST_F(FaultyToolsTest, aToolOfTheToolThatNeverStopsWritingIsNotWaitedFor) {
    givenFfprobe("case \"$words\" in *show_streams*)\n"
                 "\"$real\" \"$@\"; /usr/bin/yes ' ' & echo $! > " +
                 (world.folder / "grandchild") + "; exit 0 ;; esac\nexec \"$real\" \"$@\"");
    mineAgain();
    thenItIsComplete();
    thenLogHasLine("✓ Probed 1 file");
}

TEST_F(FaultyToolsTest, aHundredMegabytesOfRubbishAreAFailedProbe) {
    givenFfprobe("case \"$words\" in *show_streams*) /usr/bin/head -c 100000000 /dev/zero; exit 0 ;; esac\n"
                 "exec \"$real\" \"$@\"");
    mineAgain();
    thenItIsComplete();
    thenLogHasLine("  ⚠ Failed to probe talk.wav");
}

TEST_F(FaultyToolsTest, aHundredMegabytesOnBothStreamsOfFfmpegDecideNothing) {
    makeFootage(file, 12.0, {"-ac", "2"});
    givenFfmpeg("case \"$words\" in *volumedetect*)\n"
                "/usr/bin/head -c 100000000 /dev/zero; /usr/bin/head -c 100000000 /dev/zero >&2\n"
                "echo 'mean_volume: -1.0 dB' >&2; exit 0 ;; esac\nexec \"$real\" \"$@\"");
    mineAgain();
    thenItIsComplete();
    EXPECT_THAT(inProcess.log(), Not(Contains(HasSubstr("Primary channel"))));
    thenNoTemporaryFileIsLeft();
}

TEST_F(FaultyToolsTest, bytesThatAreNoTextAreNoAnswer) {
    givenFfprobe("printf '\\377\\376{\"format\": {}}\\000'");
    mineAgain();
    thenItIsComplete();
    thenLogHasLine("  ⚠ Failed to probe talk.wav");
    thenLogHasLine("Split into 1 chunk for Whisper");
}

TEST_F(FaultyToolsTest, lengthsThatNoFileHasEndInOneChunkAndACompleteMine) {
    const auto real = inProcess.platform.environment.tools.ffprobe;
    for (const std::string length : {"nan", "-inf", "-5", "1e308", "", "12.0\\n12.0"}) {
        SCOPED_TRACE(length);
        inProcess.platform.environment.tools.ffprobe = real;
        givenFfprobe("case \"$words\" in *duration*) printf '" + length + "\\n'; exit 0 ;; esac\n" +
                     "exec \"$real\" \"$@\"");
        mineAgain();
        thenItIsComplete();
        thenLogHasLine("Split into 1 chunk for Whisper");
        EXPECT_EQ(world.services.requests().size(), requestsBefore + 3);
    }
}

TEST_F(FaultyToolsTest, probeAnswersThatNoToolGivesEndInACompleteMine) {
    const auto real = inProcess.platform.environment.tools.ffprobe;
    const std::vector<std::string> answers = {
        R"({"format": {"duration": "nan"}, "streams": []})",
        R"({"format": {"duration": "1e999"}, "streams": [{"codec_type": "audio", "channels": -1}]})",
        R"({"format": {"duration": "-12"}, "streams": [{"codec_type": "video", "r_frame_rate": "1/0"}]})",
        R"({"format": {"duration": "12", "tags": {"timecode": "99:99:99:99"}}, "streams": [null]})",
        R"({"format": {"duration": "1e300", "tags": {"timecode": "00:00:00:00"}}, "streams": []})",
        std::string(100'000, '['),
    };
    for (const auto& text : answers) {
        SCOPED_TRACE(text.substr(0, 100));
        inProcess.platform.environment.tools.ffprobe = real;
        givenFfprobe("case \"$words\" in *show_streams*) /usr/bin/cat " + world.folder.write("answer.json", text) +
                     "; exit 0 ;; esac\nexec \"$real\" \"$@\"");
        mineAgain();
        thenItIsComplete();
    }
}

TEST_F(FaultyToolsTest, aToolThatEndsWellWithoutAFileIsNotBelieved) {
    std::filesystem::remove(world.cache("extracted_audio.wav"));
    givenFfmpeg("exit 0");
    mineAgain();
    thenItEndsWithLine(PipelineStep::error, "✗ Transcription failed");
    thenNothingWasPaidFor();
    thenTheEarlierProjectIsUntouched();
}

TEST_F(FaultyToolsTest, aFolderInThePlaceOfAFileThatFfmpegShouldHaveMadeIsNoSound) {
    givenFfmpeg("for last; do :; done; /usr/bin/rm -rf \"$last\"; /usr/bin/mkdir -p \"$last\"");
    mineAgain();
    thenItEndsWithLine(PipelineStep::error, "✗ Transcription failed");
    thenNothingWasPaidFor();
}

} // namespace
} // namespace zuvo::endtoend
