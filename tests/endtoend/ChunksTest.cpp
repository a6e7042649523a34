// Footage longer than one chunk: where the lines of later chunks come to lie.

#include "endtoend/MineTest.h"

namespace zuvo::endtoend {
namespace {

using testing::HasSubstr;

class ChunksTest : public MineTest {
protected:
    std::string givenLongFootage(const std::string& name, double seconds) {
        makeFootage(world.media(name), seconds);
        return world.media(name);
    }

    /// Every chunk has the same three lines, told apart by where they come to lie.
    [[nodiscard]] std::vector<double> lineStarts() const {
        std::vector<double> starts;
        for (const auto& json = jsonOf(world.exports("long", "project.json")); const auto& line : json.at("transcript"))
            starts.push_back(line.at("start"));
        return starts;
    }
};

TEST_F(ChunksTest, aSecondLongerThanAChunkMakesTwoAndTheSecondFollowsTheMeasuredFirst) {
    givenTranscript({{0.4, 2.0, "Quiet."}, {2.0, 4.0, "Nearer."}});
    givenStory({{2.0, 8.0, "Nearer."}});
    mine({givenLongFootage("long.wav", 301.0)});
    thenItEndsWith(0);
    thenLogHas({"Split into 2 chunks for Whisper", "⛏ Transcribing with Whisper...", "  Transcribing chunk 1/2...",
                "  Transcribing chunk 2/2...", "4 segments · 4 words"});
    EXPECT_THAT(namesIn(world.cache("chunks")), testing::ElementsAre("chunk_000.wav", "chunk_001.wav"));
    EXPECT_NEAR(measured(world.cache("chunks/chunk_001.wav")), 1.0, 0.001);
    const double first = measured(world.cache("chunks/chunk_000.wav"));
    EXPECT_THAT(lineStarts(), testing::ElementsAre(0.4, 2.0, first + 0.4, first + 2.0));
}

TEST_F(ChunksTest, aFileOfExactlyOneChunkIsNotCut) {
    givenTranscript();
    givenStory();
    mine({givenLongFootage("long.wav", 300.0)});
    thenItEndsWith(0);
    thenLogHas({"Split into 1 chunk for Whisper"});
    EXPECT_TRUE(namesIn(world.cache("chunks")).empty());
    EXPECT_THAT(world.services.requests(standin::Service::transcription).at(0).body,
                HasSubstr("filename=\"extracted_audio.wav\""));
}

TEST_F(ChunksTest, aFailedChunkLeavesAHoleAndNoShift) {
    givenTranscript();
    givenStory();
    world.services.fail(standin::Service::transcription, standin::Failure::status(500, "overloaded"),
                        standin::Occasion::only(2));
    mine({givenLongFootage("long.wav", 610.0)});
    thenItEndsWith(0);
    thenLogHas({"  Transcribing chunk 2/3...", "  Whisper error: overloaded", "  ⚠ Chunk 2 failed, skipping",
                "  Transcribing chunk 3/3...", "6 segments · 16 words"});
    const double third = measured(world.cache("chunks/chunk_000.wav")) + measured(world.cache("chunks/chunk_001.wav"));
    EXPECT_THAT(lineStarts(), testing::ElementsAre(0.0, 2.0, 4.0, third, third + 2.0, third + 4.0));
}

TEST_F(ChunksTest, theLanguageAskedForGoesToEveryRequestAndTheOneHeardIntoTheProject) {
    givenTranscript();
    givenStory();
    mine({givenLongFootage("long.wav", 301.0), "--language", "es"});
    thenItEndsWith(0);
    for (const auto& request : world.services.requests(standin::Service::transcription))
        EXPECT_THAT(request.body, HasSubstr("name=\"language\"\r\n\r\nes\r\n"));
    EXPECT_THAT(prompt(), HasSubstr("- Source language: es\n"));
    EXPECT_EQ(jsonOf(world.exports("long", "project.json")).at("language"), "english");
}

} // namespace
} // namespace zuvo::endtoend
