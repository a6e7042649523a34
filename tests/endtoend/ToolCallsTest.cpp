// Every call of ffmpeg and ffprobe in a whole mine: which tool, with which words, in which order.

#include "base/Text.h"
#include "endtoend/InProcess.h"
#include "endtoend/MineTest.h"

#include <filesystem>

namespace zuvo::endtoend {
namespace {

/// Where a tool lies, found here without the program's help.
std::string toolAt(const std::string& name) {
    const std::string homebrew = "/opt/homebrew/bin/" + name;
    return std::filesystem::exists(homebrew) ? homebrew : "/usr/bin/" + name;
}

class ToolCallsTest : public MineTest {
protected:
    InProcess inProcess{world};
    std::vector<std::string> expected;

    void SetUp() override {
        inProcess.platform.newUuid = [this] { return "UUID-" + std::to_string(++m_identifiers); };
    }

    /// The words of one call, parted by " | " so that a blank inside a word shows.
    void then(const std::string& tool, const std::vector<std::string>& words) {
        expected.push_back(toolAt(tool) + " | " + join(words, " | "));
    }

    void thenNothingElseWasCalled() const {
        std::vector<std::string> called;
        for (const auto& call : inProcess.processes->calls)
            called.push_back(call.tool + " | " + join(call.arguments, " | "));
        EXPECT_EQ(joined(called), joined(expected));
    }

    void thenProbed(const std::string& path) {
        then("ffprobe", {"-v", "quiet", "-print_format", "json", "-show_format", "-show_streams", path});
    }
    void thenMeasured(const std::string& path) {
        then("ffprobe", {"-v", "quiet", "-show_entries", "format=duration", "-of", "csv=p=0", path});
    }
    void thenSamplesRead(const std::string& path, const std::string& filter, const std::string& raw) {
        then("ffmpeg", {"-y", "-hide_banner", "-nostats", "-i", path, "-af", filter, "-ac", "1", "-ar", "1000", "-f",
                        "s16le", "-acodec", "pcm_s16le", raw});
    }
    void thenChannelMeasured(const std::string& path, const std::string& position, const std::string& channel) {
        then("ffmpeg", {"-hide_banner", "-nostats", "-i", path, "-ss", position, "-t", "5", "-af",
                        "pan=1c|c0=" + channel + ",volumedetect", "-f", "null", "-"});
    }
    void thenCut(const std::string& from, const std::string& start, const std::string& length, const std::string& to) {
        then("ffmpeg",
             {"-y", "-i", from, "-ss", start, "-t", length, "-ac", "1", "-ar", "16000", "-acodec", "pcm_s16le", to});
    }

    /// A file in the folder that keeps this user's temporary files apart from others'.
    [[nodiscard]] std::string temporary(const std::string& name) const {
        return world.temporary() + "/zuvo-" + std::to_string(geteuid()) + "/" + name;
    }

private:
    int m_identifiers = 0;
};

TEST_F(ToolCallsTest, aMineOfTwoFilesCallsTheseToolsInThisOrder) {
    // Left 12 dB above right, so that the voice's channel is found; the second file has one channel.
    const auto first = givenFootage("first.wav", {"-af", "pan=stereo|c0=c0|c1=0.25*c0"});
    const auto second = givenFootage("second.wav");
    auto lines = climbingLines();
    givenTranscript(lines);
    givenStory({{4.5, 11.5, "One."}, {16.25, 23.5, "Two."}});
    inProcess.mine({first, second});
    ASSERT_EQ(inProcess.step(), PipelineStep::complete) << joined(inProcess.log());

    const auto audio = world.cache("extracted_audio.wav");
    thenProbed(first);
    thenProbed(second);
    then("ffmpeg", {"-y", "-f", "concat", "-safe", "0", "-i", world.cache("concat.txt"), "-ac", "1", "-ar", "16000",
                    "-acodec", "pcm_s16le", audio});
    thenMeasured(audio); // to cut it into chunks
    thenMeasured(audio); // for the offset of the chunk behind it
    then("ffprobe", {"-hide_banner", "-i", first, "-show_entries", "stream=channels", "-of", "default=nw=1:nk=1"});
    then("ffprobe", {"-hide_banner", "-i", first, "-show_entries", "format=duration", "-of", "default=nw=1:nk=1"});
    for (const std::string position : {"2.4", "6.0", "9.6"}) {
        thenChannelMeasured(first, position, "c0");
        thenChannelMeasured(first, position, "c1");
    }
    // Each measurement's report and the chunk's boundary took an identifier before.
    thenSamplesRead(first, "pan=1c|c0=c0,aresample=1000", temporary("zuvo_pcm_UUID-8.raw"));
    thenSamplesRead(second, "pan=1c|c0=c0,aresample=1000", temporary("zuvo_pcm_UUID-9.raw"));
    thenCut(audio, "4.5", "7.0", world.cache("word_seg_0.wav"));
    thenCut(audio, "16.25", "7.25", world.cache("word_seg_1.wav"));
    thenNothingElseWasCalled();
}

TEST_F(ToolCallsTest, aMineOfOneLongFileCutsItIntoChunksBehindTheInput) {
    const auto file = world.media("long.wav");
    makeFootage(file, 301.0);
    givenTranscript();
    givenStory();
    inProcess.mine({file});
    ASSERT_EQ(inProcess.step(), PipelineStep::complete) << joined(inProcess.log());

    const auto audio = world.cache("extracted_audio.wav");
    thenProbed(file);
    then("ffmpeg", {"-y", "-i", file, "-ac", "1", "-ar", "16000", "-acodec", "pcm_s16le", audio});
    thenMeasured(audio);
    thenCut(audio, "0.0", "300.0", world.cache("chunks/chunk_000.wav"));
    thenCut(audio, "300.0", "300.0", world.cache("chunks/chunk_001.wav"));
    thenMeasured(world.cache("chunks/chunk_000.wav"));
    thenMeasured(world.cache("chunks/chunk_001.wav"));
    then("ffprobe", {"-hide_banner", "-i", file, "-show_entries", "stream=channels", "-of", "default=nw=1:nk=1"});
    thenSamplesRead(file, "aresample=1000", temporary("zuvo_pcm_UUID-3.raw"));
    thenCut(audio, "4.5", "7.0", world.cache("word_seg_0.wav"));
    thenNothingElseWasCalled();
}

TEST_F(ToolCallsTest, aFileShorterThanASourceMayBeIsMeasuredByTheStagesThemselves) {
    // Too short to be a source on the time line: both stages measure for themselves.
    const auto file = world.media("short.wav");
    makeFootage(file, 9.5);
    givenTranscript({{0.0, 2.0, "Quiet."}, {2.0, 4.0, "Nearer."}, {4.0, 9.4, "Close."}});
    givenStory({{4.2, 9.3, "Close."}});
    inProcess.mine({file});
    ASSERT_EQ(inProcess.step(), PipelineStep::complete) << joined(inProcess.log());

    const auto audio = world.cache("extracted_audio.wav");
    thenProbed(file);
    then("ffmpeg", {"-y", "-i", file, "-ac", "1", "-ar", "16000", "-acodec", "pcm_s16le", audio});
    thenMeasured(audio);
    thenMeasured(audio);
    thenMeasured(file); // where it lies, for its levels
    then("ffprobe", {"-hide_banner", "-i", file, "-show_entries", "stream=channels", "-of", "default=nw=1:nk=1"});
    thenSamplesRead(file, "aresample=1000", temporary("zuvo_pcm_UUID-2.raw"));
    thenMeasured(file); // whose moments are whose
    thenCut(audio, "4.2", "5.1000000000000005", world.cache("word_seg_0.wav"));
    thenNothingElseWasCalled();
}

} // namespace
} // namespace zuvo::endtoend
