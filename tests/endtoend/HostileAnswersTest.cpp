// Services that answer with more, deeper or other things than any service would: the run ends in a line that says so,
// or goes on with what can be used, and an earlier project stays.

#include "endtoend/InProcess.h"
#include "endtoend/MineTest.h"
#include "fakes/RawServer.h"

namespace zuvo::endtoend {
namespace {

using standin::Failure;
using standin::Occasion;
using standin::Service;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;
using namespace std::chrono_literals;

constexpr std::size_t megabyte = 1024UL * 1024UL;

/// So deep that a reader by recursion runs out of stack.
std::string deep() {
    return std::string(200'000, '[') + std::string(200'000, ']');
}

/// A list of so many segments, each by `segment`.
template <class Segment>
std::string listOf(int count, const Segment& segment) {
    std::string list = "[";
    for (int i = 0; i < count; ++i)
        list += (i == 0 ? "" : ", ") + segment(i);
    return list + "]";
}

std::string transcriptOf(const std::string& segments) {
    return R"({"text": "", "language": "english", "words": [], "segments": )" + segments + "}";
}

class HostileAnswersTest : public TalkTest {
protected:
    void givenTranscription(const std::string& body, Occasion occasion = {}) {
        world.services.fail(Service::transcription, Failure::body(body), occasion);
    }
    void givenReply(const std::string& text) { world.services.fail(Service::messages, Failure::reply(text)); }
    void givenMessagesBody(const std::string& body) { world.services.fail(Service::messages, Failure::body(body)); }

    void thenTranscriptionFailsBecause(const std::string& reason) const {
        thenItEndsWith(1);
        thenLogEndsWith(
            {"  Whisper request failed: " + reason, "  ⚠ Chunk 1 failed, skipping", "✗ Transcription failed"});
        EXPECT_EQ(world.services.requests().size(), 1U);
    }

    void thenTheStoryFailsBecause(const std::string& line, const std::string& preview) const {
        thenItEndsWith(1);
        thenLogEndsWith({line, "  Response preview: " + preview + "...", "✗ Story analysis failed"});
    }

    void thenItIsComplete() const {
        thenItEndsWith(0);
        thenLogEndsWith({"✓ Complete — we found gems!"});
    }

    [[nodiscard]] Json storySegments() const { return jsonOf(world.cache("segments.json")); }

    /// The run goes on with hostile word times, and its files can be read.
    void thenWordsDoNoHarm(const std::string& words) {
        SCOPED_TRACE(words.substr(0, 100));
        givenTranscript();
        givenTranscription(words, Occasion::from(2));
        mine({file});
        thenItIsComplete();
        EXPECT_EQ(storySegments().size(), 1U);
        EXPECT_TRUE(exists(world.exports("talk", "subtitles.srt")));
    }
};

TEST_F(HostileAnswersTest, aTranscriptionThatIsEmptyDeepOrNoNumberIsNoJson) {
    for (const auto& body :
         {std::string(), std::string(" \n"), deep(), transcriptOf(R"([{"start": NaN, "end": 1.0, "text": "a"}])"),
          transcriptOf(R"([{"start": 1e999, "end": 1.0, "text": "a"}])"),
          transcriptOf("[{\"start\": 0.0, \"end\": 1.0, \"text\": \"\xFF\xFE\"}]"),
          transcriptOf(R"([{"start": 0.0, "end": 1.0, "text": "\ud800"}])"), "{}" + std::string(1, '\0') + "{}"}) {
        World fresh;
        fresh.services.fail(Service::transcription, Failure::body(body));
        ending = fresh.zuvo({"mine", file});
        SCOPED_TRACE(body.substr(0, 100));
        thenItEndsWith(1);
        thenLogEndsWith({"  Whisper request failed: the text is not valid JSON", "  ⚠ Chunk 1 failed, skipping",
                         "✗ Transcription failed"});
        EXPECT_EQ(fresh.services.requests().size(), 1U);
    }
}

TEST_F(HostileAnswersTest, timesThatAreTextsAreAnAnswerOfAnotherShape) {
    for (const std::string time : {R"("NaN")", R"("inf")", "null", "true", "[]"}) {
        givenTranscription(transcriptOf("[{\"start\": " + time + ", \"end\": 1.0, \"text\": \"a\"}]"));
        mine({file});
        thenItEndsWith(1);
        EXPECT_THAT(ending.output, HasSubstr("  Whisper request failed: "));
        thenLogEndsWith({"✗ Transcription failed"});
    }
}

TEST_F(HostileAnswersTest, fiftyMegabytesOfBlanksAreNoAnswer) {
    givenTranscription(std::string(50 * megabyte, ' '));
    mine({file});
    thenTranscriptionFailsBecause("the text is not valid JSON");
}

TEST_F(HostileAnswersTest, moreThanTheLimitIsNotReadToItsEnd) {
    givenTranscription(std::string(65 * megabyte, ' '));
    mine({file});
    thenTranscriptionFailsBecause("The answer is too long");
}

TEST_F(HostileAnswersTest, fiftyMegabytesOfAnErrorAreShownByTheirBeginning) {
    world.services.fail(Service::transcription, Failure::status(500, std::string(50 * megabyte, 'x')));
    mine({file});
    thenItEndsWith(1);
    thenLogEndsWith(
        {"  Whisper error: " + std::string(200, 'x'), "  ⚠ Chunk 1 failed, skipping", "✗ Transcription failed"});
}

TEST_F(HostileAnswersTest, aLineOfTenMegabytesIsToldLikeAnyOther) {
    givenTranscription(
        transcriptOf(R"([{"start": 0.0, "end": 12.0, "text": ")" + std::string(10 * megabyte, 'a') + "\"}]"));
    mine({file});
    thenItIsComplete();
    thenLogHas({"1 segments · 1 words"});
    EXPECT_EQ(jsonOf(world.exports("talk", "project.json")).at("transcript").at(0).at("text").get<std::string>().size(),
              10 * megabyte);
}

TEST_F(HostileAnswersTest, aHundredThousandLinesAreToldLikeThree) {
    givenTranscription(transcriptOf(listOf(100'000, [](int i) {
        return "{\"start\": " + std::to_string(i % 12) + ".0, \"end\": " + std::to_string(i % 12) +
               ".5, \"text\": \"Line.\"}";
    })));
    mine({file});
    thenItIsComplete();
    thenLogHas({"100000 segments · 100000 words"});
}

TEST_F(HostileAnswersTest, linesWhoseTimesRunBackwardsOrBeyondAllBoundsEndInACompleteMine) {
    for (const std::string times :
         {R"({"start": 12.0, "end": 0.0, "text": "back"}, {"start": 4.0, "end": 2.0, "text": "and back"})",
          R"({"start": 0.0, "end": 1e308, "text": "long"}, {"start": -1e308, "end": 1e308, "text": "longer"})",
          R"({"start": 1e308, "end": -1e308, "text": "turned"})", R"({"start": -0.0, "end": 5e-324, "text": "short"})",
          R"({"start": 9223372036854775808, "end": 18446744073709551616, "text": "large"})"}) {
        SCOPED_TRACE(times);
        givenTranscription(transcriptOf("[" + times + "]"), Occasion::next(1));
        mine({file});
        thenItIsComplete();
    }
}

TEST_F(HostileAnswersTest, wordTimesOfAnyKindDoNoHarm) {
    for (const auto& words :
         {deep(), std::string(R"({"words": {}})"),
          std::string(
              R"({"words": [{"word": "a", "start": 5.0, "end": 1.0}, {"word": "b", "start": 2.0, "end": 0.5}]})"),
          std::string(R"({"words": [{"word": "a", "start": 1e308, "end": -1e308}]})"),
          std::string(R"({"words": [{"word": "a", "start": "NaN", "end": "inf"}, null, [], 5]})"),
          std::string(R"({"words": [{"word": "\u0000\u001b[31m", "start": 0.0, "end": 1.0}]})"),
          R"({"words": [{"word": ")" + std::string(megabyte, 'w') + R"(", "start": 0.0, "end": 1.0}]})"})
        thenWordsDoNoHarm(words);
}

TEST_F(HostileAnswersTest, anEmptyModelAnswerIsAParseError) {
    givenMessagesBody("");
    mine({file});
    thenItEndsWith(1);
    thenLogEndsWith({"  Claude response parse error: ", "✗ Story analysis failed"});
}

TEST_F(HostileAnswersTest, aModelAnswerOfFiftyMegabytesOfBracketsIsShownByItsBeginning) {
    givenMessagesBody(std::string(50 * megabyte, '['));
    mine({file});
    thenItEndsWith(1);
    thenLogEndsWith({"  Claude response parse error: " + std::string(200, '['), "✗ Story analysis failed"});
}

TEST_F(HostileAnswersTest, anEmptyReplyIsNoStory) {
    givenReply("");
    mine({file});
    thenTheStoryFailsBecause("  JSON decode error: the text is not valid JSON", "");
}

TEST_F(HostileAnswersTest, aDeepReplyIsNoStory) {
    const auto reply = R"({"segments": )" + deep() + "}";
    givenReply(reply);
    mine({file});
    thenTheStoryFailsBecause("  JSON decode error: the text is not valid JSON", reply.substr(0, 300));
}

TEST_F(HostileAnswersTest, aReplyWithNumbersThatAreNoneIsNoStory) {
    for (const std::string number : {"NaN", "Infinity", "-Infinity", "1e999", "0x10", "01"}) {
        SCOPED_TRACE(number);
        const auto reply = R"({"segments": [{"startTime": )" + number + R"(, "endTime": 11.5}]})";
        givenReply(reply);
        mine({file});
        thenTheStoryFailsBecause("  JSON decode error: the text is not valid JSON", reply);
    }
}

TEST_F(HostileAnswersTest, ofTenThousandRecoveredMomentsTheOneThatCanBeIsTold) {
    // Without translations the reply must be recovered; all but one end before they begin.
    givenReply(R"({"segments": )" +
               listOf(10'000,
                      [](int i) {
                          return i == 5000
                                     ? std::string(R"({"startTime": 4.5, "endTime": 11.5, "transcript": "Kept."})")
                                     : R"({"startTime": 9.5, "endTime": )" + std::to_string(i % 9) + "}";
                      }) +
               "}");
    mine({file});
    thenItIsComplete();
    thenLogHas({"  ✓ Recovered via manual parse", "  Energy audit: 1 passed, 9999 rejected"});
    EXPECT_EQ(storySegments().size(), 1U);
    EXPECT_EQ(storySegments().at(0).at("transcript"), "Kept.");
}

TEST_F(HostileAnswersTest, tenThousandMomentsInTheSilenceAreEachRejected) {
    givenReply(R"({"segments": )" +
               listOf(10'000,
                      [](int i) {
                          return R"({"startTime": )" + std::to_string(100 + i) + R"(.0, "endTime": )" +
                                 std::to_string(110 + i) + ".0}";
                      }) +
               "}");
    mine({file});
    thenItIsComplete();
    thenLogHas({"  Energy audit: 0 passed, 10000 rejected"});
    EXPECT_EQ(storySegments(), Json::array());
}

TEST_F(HostileAnswersTest, momentsBeyondAllBoundsEndInAMineThatIsSavedOrSaysThatItIsNot) {
    struct Row {
        std::string moment;
        bool isSaved; ///< JSON has no form for the infinite lengths that follow from some
    };
    for (const auto& [moment, isSaved] : std::vector<Row>{
             {R"("startTime": 1e308, "endTime": -1e308)", false},
             {R"("startTime": -1e308, "endTime": 1e308)", false},
             {R"("startTime": 0, "endTime": 1e308)", true},
             {R"("startTime": 4.5, "endTime": 1e300, "index": 9223372036854775807)", true},
             {R"("startTime": -1e18, "endTime": 12, "index": -9223372036854775808)", true},
             {R"("startTime": 4.5, "endTime": 11.5, "index": 1e300, "sourceClip": "../../../etc/passwd")", true},
             {R"("startTime": 4.5, "endTime": 11.5, "chapter": "\u0000\n\r\u001b[31m../", "transcript": "\u0000")",
              true},
         }) {
        SCOPED_TRACE(moment);
        givenReply("{\"segments\": [{" + moment +
                   R"(}], "structure": {"acts": [{"name": "\u0000", "segments": [-1, 9223372036854775807]}]},
                      "subtitles": [{"startTime": 1e308, "endTime": -1e308, "text": ""}], "estimatedDuration": -1e308})");
        mine({file});
        thenItEndsWith(isSaved ? 0 : 1);
        thenLogHas({"✓ Complete — we found gems!"});
        const std::string reason = "mining_results.json was not saved: it holds a number that JSON cannot hold";
        EXPECT_EQ(ending.errors.find(reason) == std::string::npos, isSaved) << ending.errors;
        EXPECT_THAT(namesIn(world.exports("")), testing::ElementsAre("talk"));
    }
}

TEST_F(HostileAnswersTest, aMomentOfManyMegabytesIsTooLongOrWrittenWhole) {
    givenStory({{4.5, 11.5, std::string(50 * megabyte, 'm')}});
    // Twice the text, since it stands in transcript and translation: more than an answer may be.
    mine({file});
    thenItEndsWith(1);
    thenLogEndsWith({"  Claude request failed: The answer is too long", "✗ Story analysis failed"});
    givenStory({{4.5, 11.5, std::string(5 * megabyte, 'm')}});
    mine({file});
    thenItIsComplete();
    EXPECT_EQ(storySegments().at(0).at("transcript").get<std::string>().size(), 5 * megabyte);
}

TEST_F(HostileAnswersTest, aServiceThatStallsInTheMiddleOfItsAnswerTimesOut) {
    const auto whole = tests::httpAnswer(200, transcriptionAnswer(climbingLines(), {}));
    tests::RawServer stalling;
    stalling.thenAlways(tests::answer(whole.substr(0, whole.size() - 10)));
    InProcess inProcess(world);
    inProcess.timeouts.transcription = 300ms;
    inProcess.variables["OPENAI_BASE_URL"] = stalling.url("/v1");
    inProcess.mine({file});
    EXPECT_EQ(inProcess.step(), PipelineStep::error);
    EXPECT_THAT(joined(inProcess.log()), EndsWith("  Whisper request failed: The request timed out\n"
                                                  "  ⚠ Chunk 1 failed, skipping\n✗ Transcription failed\n"));
    EXPECT_EQ(stalling.requests().size(), 1U);
}

TEST_F(HostileAnswersTest, aModelThatStallsInTheMiddleOfItsAnswerTimesOutAndTheTranscriptIsKept) {
    const auto whole = tests::httpAnswer(200, R"({"content": [{"type": "text", "text": "a story"}]})");
    tests::RawServer stalling;
    stalling.thenAlways(tests::answer(whole.substr(0, whole.size() - 10)));
    InProcess inProcess(world);
    inProcess.timeouts.messages = 300ms;
    inProcess.variables["ANTHROPIC_BASE_URL"] = stalling.url();
    inProcess.mine({file});
    EXPECT_EQ(inProcess.step(), PipelineStep::error);
    EXPECT_THAT(joined(inProcess.log()),
                EndsWith("  Claude request failed: The request timed out\n✗ Story analysis failed\n"));
    EXPECT_EQ(stalling.requests().size(), 1U);
    EXPECT_EQ(namesIn(world.cache("transcripts")).size(), 1U);
}

TEST_F(HostileAnswersTest, afterEveryHostileAnswerTheEarlierProjectIsThere) {
    mine({file});
    thenItIsComplete();
    const auto before = filesBelow(world.exports("talk"));
    givenReply(deep());
    mine({file});
    thenItEndsWith(1);
    givenTranscription(deep());
    mine({file});
    thenItEndsWith(1);
    EXPECT_EQ(filesBelow(world.exports("talk")), before);
}

} // namespace
} // namespace zuvo::endtoend
