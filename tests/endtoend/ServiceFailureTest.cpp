// What the services can do wrong, over real sockets: the lines that the user sees, and how the run ends.

#include "endtoend/InProcess.h"
#include "endtoend/MineTest.h"

namespace zuvo::endtoend {
namespace {

using standin::Failure;
using standin::Occasion;
using standin::Service;
using testing::EndsWith;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;
using namespace std::chrono_literals;

class ServiceFailureTest : public TalkTest {
protected:
    void givenTranscriptionFails(const Failure& failure, Occasion occasion = {}) {
        world.services.fail(Service::transcription, failure, occasion);
    }
    void givenMessagesFail(const Failure& failure) { world.services.fail(Service::messages, failure); }

    /// The one chunk failed with this line, and so did the run; the model was never asked.
    void thenTranscriptionFailsWith(const std::string& line) const {
        thenItEndsWith(1);
        thenLogEndsWith(
            {"  Transcribing chunk 1/1...", line, "  ⚠ Chunk 1 failed, skipping", "✗ Transcription failed"});
        thenEachServiceWasAsked(1, 0);
    }

    /// The model's answer failed with this line, and so did the run; the transcript is kept.
    void thenAnalysisFailsWith(const std::string& line) const {
        thenItEndsWith(1);
        thenLogEndsWith({"🔑 API key found (made-up-anth...)", line, "✗ Story analysis failed"});
        thenEachServiceWasAsked(1, 1);
        EXPECT_THAT(namesIn(world.cache("transcripts")), SizeIs(1));
        EXPECT_FALSE(exists(world.exports("")));
    }

    void thenEachServiceWasAsked(std::size_t transcription, std::size_t messages) const {
        EXPECT_EQ(transcriptionRequests(), transcription);
        EXPECT_EQ(messagesRequests(), messages);
        EXPECT_EQ(world.services.requests().size(), transcription + messages);
    }

    [[nodiscard]] std::string logLine(const std::string& start) const {
        for (const auto& line : ending.log()) {
            if (line.starts_with(start))
                return line.substr(start.size());
        }
        ADD_FAILURE() << "No line begins with " << start << "\n" << ending.output;
        return {};
    }
};

TEST_F(ServiceFailureTest, anEmptyTranscriptionKeyIsTheServicesToRefuse) {
    world.set("OPENAI_API_KEY", "");
    world.services.failNothing();
    mine({file});
    thenItEndsWith(1);
    EXPECT_THAT(logLine("  Whisper error: "), HasSubstr("You didn't provide an API key."));
    thenLogEndsWith({"  ⚠ Chunk 1 failed, skipping", "✗ Transcription failed"});
    EXPECT_EQ(world.services.requests(Service::transcription).at(0).header("Authorization").substr(0, 6), "Bearer");
}

TEST_F(ServiceFailureTest, aRefusedTranscriptionKeyIsNotTriedAgain) {
    givenTranscriptionFails(Failure::unauthorized());
    mine({file});
    thenItEndsWith(1);
    EXPECT_THAT(logLine("  Whisper error: "), HasSubstr("status 401"));
    thenEachServiceWasAsked(1, 0);
}

TEST_F(ServiceFailureTest, tooManyTranscriptionsAreShownInTheServicesWords) {
    givenTranscriptionFails(Failure::status(429, "slow down"));
    mine({file});
    thenTranscriptionFailsWith("  Whisper error: slow down");
}

TEST_F(ServiceFailureTest, twoHundredCharactersOfATranscriptionErrorAreShown) {
    std::string body;
    std::string shown;
    for (int i = 0; i < 201; ++i) {
        body += "é";
        shown += i < 200 ? "é" : "";
    }
    givenTranscriptionFails(Failure::status(500, body));
    mine({file});
    thenTranscriptionFailsWith("  Whisper error: " + shown);
}

TEST_F(ServiceFailureTest, aTranscriptionErrorThatIsNoTextIsUnknown) {
    givenTranscriptionFails(Failure::status(500, "\xFF\xFE"));
    mine({file});
    thenTranscriptionFailsWith("  Whisper error: unknown");
}

TEST_F(ServiceFailureTest, aRedirectedTranscriptionIsAnErrorAndNotFollowed) {
    givenTranscriptionFails(Failure::redirect(world.services.transcriptionBase().toStdString() + "/elsewhere"));
    mine({file});
    thenTranscriptionFailsWith("  Whisper error: ");
}

TEST_F(ServiceFailureTest, aTranscriptionThatIsNoJsonFailsTheRequest) {
    givenTranscriptionFails(Failure::notJson());
    mine({file});
    thenItEndsWith(1);
    EXPECT_FALSE(logLine("  Whisper request failed: ").empty());
    thenLogEndsWith({"  ⚠ Chunk 1 failed, skipping", "✗ Transcription failed"});
}

TEST_F(ServiceFailureTest, aTranscriptionWithoutSegmentsFailsTheRequest) {
    givenTranscriptionFails(Failure::wrongShape());
    mine({file});
    thenItEndsWith(1);
    EXPECT_FALSE(logLine("  Whisper request failed: ").empty());
}

TEST_F(ServiceFailureTest, aTranscriptionCutShortFailsTheRequest) {
    for (const auto& failure : {Failure::truncatedJson(), Failure::cut()}) {
        givenTranscriptionFails(failure);
        mine({file});
        thenItEndsWith(1);
        EXPECT_FALSE(logLine("  Whisper request failed: ").empty());
    }
}

TEST_F(ServiceFailureTest, aDroppedTranscriptionReachesTheServiceOnce) {
    givenTranscriptionFails(Failure::drop());
    mine({file});
    thenTranscriptionFailsWith("  Whisper request failed: Connection closed");
}

TEST_F(ServiceFailureTest, aTranscriptWithoutALineIsAFailure) {
    givenTranscript({});
    mine({file});
    thenItEndsWith(1);
    thenLogEndsWith({"  Transcribing chunk 1/1...", "✗ Transcription failed"});
}

TEST_F(ServiceFailureTest, aRefusedModelKeyIsNotTriedAgain) {
    givenMessagesFail(Failure::unauthorized());
    mine({file});
    thenItEndsWith(1);
    EXPECT_THAT(logLine("  Claude HTTP error: "), HasSubstr("status 401"));
    thenEachServiceWasAsked(1, 1);
}

TEST_F(ServiceFailureTest, anOverloadedModelIsShownInTheServicesWords) {
    givenMessagesFail(Failure::status(529, "overloaded"));
    mine({file});
    thenAnalysisFailsWith("  Claude HTTP error: overloaded");
}

TEST_F(ServiceFailureTest, threeHundredCharactersOfAModelErrorAreShown) {
    givenMessagesFail(Failure::status(500, std::string(300, 'x') + "beyond"));
    mine({file});
    thenAnalysisFailsWith("  Claude HTTP error: " + std::string(300, 'x'));
}

TEST_F(ServiceFailureTest, aRedirectedModelIsAnErrorAndTheKeyStaysHere) {
    givenMessagesFail(Failure::redirect(world.services.messagesBase().toStdString() + "/v1/messages"));
    mine({file});
    thenAnalysisFailsWith("  Claude HTTP error: ");
}

TEST_F(ServiceFailureTest, aModelAnswerThatIsNoJsonIsShown) {
    givenMessagesFail(Failure::notJson());
    mine({file});
    thenAnalysisFailsWith("  Claude response parse error: <html>Not what you asked for</html>");
}

TEST_F(ServiceFailureTest, aModelAnswerOfAnotherShapeIsShown) {
    givenMessagesFail(Failure::wrongShape());
    mine({file});
    thenAnalysisFailsWith("  Claude response parse error: {\"unexpected\":[1,2,3]}");
}

TEST_F(ServiceFailureTest, aTruncatedModelAnswerIsAParseError) {
    world.services.failNothing();
    givenTranscript();
    givenMessagesFail(Failure::truncatedJson());
    mine({file});
    thenItEndsWith(1);
    EXPECT_THAT(logLine("  Claude response parse error: "), StartsWith("{\"id\":\"msg_standin\""));
    thenLogEndsWith({"✗ Story analysis failed"});
}

TEST_F(ServiceFailureTest, aDroppedModelRequestReachesTheServiceOnce) {
    givenMessagesFail(Failure::drop());
    mine({file});
    thenAnalysisFailsWith("  Claude request failed: Connection closed");
}

TEST_F(ServiceFailureTest, aModelAnswerCutOnTheWayIsAFailedRequest) {
    givenMessagesFail(Failure::cut());
    mine({file});
    thenItEndsWith(1);
    EXPECT_FALSE(logLine("  Claude request failed: ").empty());
    thenEachServiceWasAsked(1, 1);
}

TEST_F(ServiceFailureTest, aServiceThatNobodyPlaysIsAFailedRequest) {
    world.set("ANTHROPIC_BASE_URL", "http://127.0.0.1:1");
    mine({file});
    thenItEndsWith(1);
    EXPECT_FALSE(logLine("  Claude request failed: ").empty());
    thenLogEndsWith({"✗ Story analysis failed"});
}

TEST_F(ServiceFailureTest, aFencedReplyIsReadAllTheSame) {
    givenMessagesFail(
        Failure::reply("Here it is.\n```json\n" + storyReply({{4.5, 11.5, "Fenced."}}) + "\n```\nEnjoy!"));
    mine({file});
    thenItEndsWith(0);
    thenLogLacks("JSON decode error");
    EXPECT_EQ(jsonOf(world.cache("segments.json")).at(0).at("transcript"), "Fenced.");
}

TEST_F(ServiceFailureTest, aMissingTranslationIsRecoveredAndTheTranscriptIsShown) {
    auto story = Json::parse(storyReply({{4.5, 11.5, "Spoken words alone."}}));
    story.at("segments").at(0).erase("translation");
    givenMessagesFail(Failure::reply(story.dump()));
    mine({file});
    thenItEndsWith(0);
    EXPECT_FALSE(logLine("  JSON decode error: ").empty());
    EXPECT_THAT(logLine("  Response preview: "), EndsWith("..."));
    thenLogHas({"  ✓ Recovered via manual parse"});
    EXPECT_EQ(jsonOf(world.cache("segments.json")).at(0).at("translation"), "");
    EXPECT_THAT(bytesOf(world.exports("talk", "subtitles.srt")), HasSubstr("Spoken words alone."));
}

TEST_F(ServiceFailureTest, aReplyThatHoldsNoObjectIsNoStory) {
    givenMessagesFail(Failure::reply("I cannot help with that."));
    mine({file});
    thenItEndsWith(1);
    thenLogEndsWith({"  Response preview: I cannot help with that....", "✗ Story analysis failed"});
}

TEST_F(ServiceFailureTest, momentsThatAreQuietOrShortAreLeftOut) {
    givenStory({{0.1, 1.9, "Too short."}, {4.5, 11.5, "Kept."}, {24.0, 30.0, "Beyond the end."}});
    mine({file});
    thenItEndsWith(0);
    thenLogHas({"  Energy audit: 1 passed, 2 rejected"});
    EXPECT_THAT(logLine("  ✗ Reject seg 2: RMS "), StartsWith("-60.0dB < "));
    const auto segments = jsonOf(world.cache("segments.json"));
    ASSERT_EQ(segments.size(), 1U);
    EXPECT_EQ(segments.at(0).at("index"), 0);
    EXPECT_EQ(segments.at(0).at("transcript"), "Kept.");
}

TEST_F(ServiceFailureTest, aStoryOfNoMomentIsStillAFinishedMine) {
    givenStory({{0.1, 1.9, "Too short."}});
    mine({file});
    thenItEndsWith(0);
    thenLogHas({"  Energy audit: 0 passed, 1 rejected"});
    EXPECT_EQ(jsonOf(world.cache("segments.json")), Json::array());
    EXPECT_EQ(bytesOf(world.exports("talk", "subtitles.srt")), "");
}

TEST_F(ServiceFailureTest, withoutAnyWordTimesTheStoryIsStillComplete) {
    givenTranscriptionFails(Failure::status(500), Occasion::from(2));
    mine({file});
    thenItEndsWith(0);
    thenLogHas({"  Word transcribing segment 1/1...", "✓ Exported SRT, transcript, and story brief"});
    thenLogLacks("words transcribed across");
    EXPECT_FALSE(exists(world.cache("word_timestamps.json")));
    EXPECT_THAT(bytesOf(world.exports("talk", "subtitles.srt")), StartsWith("1\n00:00:00,300 --> "))
        << "cards are spread evenly";
}

TEST_F(ServiceFailureTest, aMomentWhoseWordsFailIsMissingAmongTheWordTimesAlone) {
    givenStory({{4.5, 11.5, "One."}, {5.0, 11.0, "Two."}});
    givenTranscriptionFails(Failure::drop(), Occasion::only(2));
    mine({file});
    thenItEndsWith(0);
    thenLogHas({"  Word transcribing segment 2/2...", "✓ 3 words transcribed across 1 segments"});
    const auto timestamps = jsonOf(world.cache("word_timestamps.json"));
    ASSERT_EQ(timestamps.size(), 1U);
    EXPECT_EQ(timestamps.at(0).at("segmentIndex"), 1);
    EXPECT_EQ(transcriptionRequests(), 3U);
}

TEST_F(ServiceFailureTest, aServiceThatIsSilentTooLongTimesOut) {
    InProcess inProcess(world);
    inProcess.timeouts.transcription = 300ms;
    givenTranscriptionFails(Failure::stall());
    inProcess.mine({file});
    EXPECT_EQ(inProcess.step(), PipelineStep::error);
    EXPECT_THAT(joined(inProcess.log()), EndsWith("  Whisper request failed: The request timed out\n"
                                                  "  ⚠ Chunk 1 failed, skipping\n✗ Transcription failed\n"));
    thenEachServiceWasAsked(1, 0);
}

TEST_F(ServiceFailureTest, aModelThatIsSilentTooLongTimesOut) {
    InProcess inProcess(world);
    inProcess.timeouts.messages = 300ms;
    givenMessagesFail(Failure::stall());
    inProcess.mine({file});
    EXPECT_THAT(joined(inProcess.log()),
                EndsWith("  Claude request failed: The request timed out\n✗ Story analysis failed\n"));
    thenEachServiceWasAsked(1, 1);
}

TEST_F(ServiceFailureTest, wordsThatComeTooLateAreDoneWithout) {
    InProcess inProcess(world);
    inProcess.timeouts.words = 300ms;
    givenTranscriptionFails(Failure::stall(), Occasion::from(2));
    inProcess.mine({file});
    EXPECT_EQ(inProcess.step(), PipelineStep::complete);
    EXPECT_FALSE(exists(world.cache("word_timestamps.json")));
}

TEST_F(ServiceFailureTest, anEmptyModelKeyIsToldWithTheWayToSetIt) {
    InProcess inProcess(world);
    inProcess.variables["ANTHROPIC_API_KEY"] = "";
    world.services.failNothing();
    givenTranscript();
    inProcess.mine({file});
    EXPECT_EQ(inProcess.step(), PipelineStep::error);
    EXPECT_THAT(
        joined(inProcess.log()),
        HasSubstr("⚠️ API key is EMPTY — checked env, ~/.config/anthropic/api_key, ~/.zshrc\n  Home dir: " +
                  world.home() +
                  "\n  Fix: echo $ANTHROPIC_API_KEY > ~/.config/anthropic/api_key\n  Claude HTTP error: {"));
    EXPECT_THAT(joined(inProcess.log()), HasSubstr("x-api-key header is required"));
    thenEachServiceWasAsked(1, 1);
}

TEST_F(ServiceFailureTest, theModelKeyIsFoundInTheKeyFileOfTheUserDatabasesHome) {
    InProcess inProcess(world);
    inProcess.variables.erase("ANTHROPIC_API_KEY");
    inProcess.platform.environment.realHomeDir = world.folder / "database-home";
    world.folder.write("database-home/.zuvo/anthropic.key", "  key-of-the-file-behind\n");
    inProcess.mine({file});
    EXPECT_EQ(inProcess.step(), PipelineStep::complete);
    EXPECT_THAT(joined(inProcess.log()), HasSubstr("🔑 API key found (key-of-the-f...)\n"));
    EXPECT_EQ(world.services.requests(Service::messages).at(0).header("x-api-key"), "key-of-the-file-behind");
}

TEST_F(ServiceFailureTest, theTranscriptionKeyIsFoundInAShellFile) {
    InProcess inProcess(world);
    inProcess.variables.erase("OPENAI_API_KEY");
    world.folder.write("home/.bashrc", "export OPENAI_API_KEY=\"key-of-the-shell\"\n");
    inProcess.mine({file});
    EXPECT_EQ(inProcess.step(), PipelineStep::complete);
    EXPECT_EQ(world.services.requests(Service::transcription).at(0).header("Authorization"), "Bearer key-of-the-shell");
    EXPECT_THAT(joined(inProcess.log()), Not(HasSubstr("key-of-the-shell"))) << "no key is shown";
}

} // namespace
} // namespace zuvo::endtoend
