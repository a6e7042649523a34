#include "fakes/pipeline/PipelineFixture.h"

#include "base/Json.h"
#include "fakes/RawServer.h"

#include <algorithm>

using namespace std::chrono_literals;
using namespace zuvo;
using namespace zuvo::tests;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

namespace {

class Story : public PipelineFixture {
protected:
    std::optional<MiningResults> analyze(TranscriptResult transcript, double minutes = 5.0,
                                         std::string language = "auto") {
        return ended(pipeline->analyzeStory(std::move(transcript), minutes, std::move(language), "Slow"));
    }

    std::optional<MiningResults> analyze() { return analyze(transcriptOf({{0.0, 125.4, "one", "en"}})); }

    /// The last `count` lines of the log.
    std::vector<std::string> lastLines(std::size_t count) const {
        const auto lines = log();
        const auto skipped = lines.size() - std::min(count, lines.size());
        return {lines.begin() + static_cast<std::ptrdiff_t>(skipped), lines.end()};
    }

    std::string prompt() const {
        const auto body = Json::parse(services->requests.at(0).body);
        return body.at("messages").at(0).at("content").get<std::string>();
    }

    /// A reply of moments with these times and the numbers 0, 1, 2 ... around a fixed rest.
    static std::string replyOf(const std::vector<std::pair<double, double>>& times) {
        auto segments = Json::array();
        for (const auto& [start, end] : times)
            segments.push_back(Json{{"index", segments.size()},
                                    {"startTime", start},
                                    {"endTime", end},
                                    {"sourceClip", "source"},
                                    {"transcript", "t"},
                                    {"translation", "t"}});
        return R"({"segments": )" + segments.dump() +
               R"(, "structure": {"acts": [{"name": "Act 1", "segments": [0, 1, 2]}], "totalDuration": 60.0},
                   "subtitles": [{"startTime": 0.0, "endTime": 1.0, "text": "card"}], "estimatedDuration": 61.0})";
    }

    /// A.wav at -20 dB from 0 to 200, B.wav at -40 dB from 200 to 350, and a line in each, so that quiet ends at -20.
    TranscriptResult givenLoudAndQuiet() {
        ended(pipeline->probeAllMedia(givenFootage()));
        pipeline->reset();
        return transcriptOf({{0.0, 10.0, "one", "en"}, {210.0, 220.0, "two", "en"}});
    }
};

std::string repeated(const std::string& piece, int count) {
    std::string text;
    for (int i = 0; i < count; ++i)
        text += piece;
    return text;
}

constexpr auto parseError = "[accent]   Claude response parse error: ";

} // namespace

TEST_F(Story, theRequestHasTheseHeadersInOrderAndThreeKeys) {
    givenStory(fixtureStory);
    EXPECT_TRUE(analyze());
    ASSERT_THAT(services->requests, SizeIs(1));
    const auto& request = services->requests[0];
    EXPECT_EQ(request.url, "https://api.anthropic.com/v1/messages");
    using Header = std::pair<std::string, std::string>;
    EXPECT_THAT(request.headers,
                ElementsAre(Header("x-api-key", "anthropic-key-0123456789"), Header("anthropic-version", "2023-06-01"),
                            Header("content-type", "application/json")));
    EXPECT_EQ(request.timeout, 180s);
    const auto body = Json::parse(request.body);
    EXPECT_EQ(body.size(), 3U);
    EXPECT_EQ(body.at("model"), "claude-sonnet-4-20250514");
    EXPECT_EQ(body.at("max_tokens"), 8000);
    ASSERT_THAT(body.at("messages"), SizeIs(1));
    EXPECT_EQ(body.at("messages").at(0).size(), 2U);
    EXPECT_EQ(body.at("messages").at(0).at("role"), "user");
    EXPECT_THAT(prompt(), StartsWith("You are an expert audio editor and story architect."));
    EXPECT_THAT(prompt(), EndsWith("\"estimatedDuration\": 298.5\n}"));
}

TEST_F(Story, thePromptCarriesStyleLengthsLanguageAndCounts) {
    givenStory(fixtureStory);
    (void)analyze(transcriptOf({{0.0, 100.0, "one", "en"}, {100.0, 125.4, "two", "en"}}, "unknown"), 2.5);
    EXPECT_THAT(prompt(), HasSubstr("build a compelling 2-minute story.\n\nSTYLE: Slow\n\n"));
    EXPECT_THAT(prompt(), HasSubstr("- Total duration: 2 min (125s)\n- Source language: unknown\n"
                                    "- Target edit: 2 min (150s)\n"));
    EXPECT_THAT(prompt(), HasSubstr("Energy stats: 2 loud segments, 0 medium, 0 quiet\n"));
}

TEST_F(Story, theUsersLanguageGoesBeforeTheTranscripts) {
    givenStory(fixtureStory);
    (void)analyze(transcriptOf({}, "en"), 5.0, "pt");
    EXPECT_THAT(prompt(), HasSubstr("- Total duration: 0 min (0s)\n- Source language: pt\n"));
}

TEST_F(Story, aTranscriptWithBytesThatAreNoTextIsStillSent) {
    givenStory(fixtureStory);
    EXPECT_TRUE(analyze(transcriptOf({{0.0, 10.0, "a\xff z", "en"}})));
    EXPECT_THAT(prompt(), HasSubstr("a\uFFFD z"));
}

TEST_F(Story, anEmptyKeyIsToldWithItsRemedyAndTheRequestIsSentAllTheSame) {
    variables.erase("ANTHROPIC_API_KEY");
    services->then(401, "invalid x-api-key");
    EXPECT_FALSE(analyze().has_value());
    EXPECT_THAT(lastLines(4),
                ElementsAre("[accent] ⚠️ API key is EMPTY — checked env, ~/.config/anthropic/api_key, ~/.zshrc",
                            "[dim]   Home dir: " + realHome,
                            "[dim]   Fix: echo $ANTHROPIC_API_KEY > ~/.config/anthropic/api_key",
                            "[accent]   Claude HTTP error: invalid x-api-key"));
    EXPECT_EQ(services->requests.at(0).headers.at(0).second, "");
}

TEST_F(Story, noMoreThanTwelveCharactersOfAKeyAreEverLogged) {
    variables["ANTHROPIC_API_KEY"] = "sk-ant-abcdefghijkl";
    services->then(401, "no");
    (void)analyze();
    thenLogHas("[dim] 🔑 API key found (sk-ant-abcde...)");
    thenLogLacks("sk-ant-abcdef");
}

TEST_F(Story, aKeyWithALineEndInsideIsNeverSent) {
    RawServer server;
    variables["ANTHROPIC_BASE_URL"] = server.url();
    variables["ANTHROPIC_API_KEY"] = "abc\r\nx-other: 1";
    platform.http = std::make_shared<NetworkHttpClient>();
    givenNewLaunch(1);
    EXPECT_FALSE(analyze().has_value());
    EXPECT_THAT(log().back(), HasSubstr("  Claude request failed: "));
    EXPECT_THAT(log().back(), HasSubstr("x-api-key"));
    EXPECT_EQ(server.connectionCount(), 0);
}

TEST_F(Story, aRefusedAddressIsSaidBeforeAKeyIsRead) {
    variables["ANTHROPIC_BASE_URL"] = "http://example.com";
    EXPECT_FALSE(analyze().has_value());
    EXPECT_EQ(log().back(), "[accent]   Claude request failed: ANTHROPIC_BASE_URL must be https, or http to this "
                            "machine or a private network: http://example.com");
    thenLogLacks("API key");
    EXPECT_THAT(variablesRead, Not(Contains("ANTHROPIC_API_KEY")));
    EXPECT_THAT(services->requests, IsEmpty());
}

TEST_F(Story, anotherAddressTakesTheServicesPlace) {
    variables["ANTHROPIC_BASE_URL"] = "http://localhost:9000/v1/";
    givenStory(fixtureStory);
    (void)analyze();
    EXPECT_EQ(services->requests.at(0).url, "http://localhost:9000/v1/messages");
}

TEST_F(Story, aRequestThatFailsIsToldInTheNetworksWords) {
    services->thenFails("The request timed out");
    EXPECT_FALSE(analyze().has_value());
    EXPECT_EQ(log().back(), "[accent]   Claude request failed: The request timed out");
}

TEST_F(Story, anErrorAnswerIsShownByItsFirstThreeHundredCharacters) {
    services->then(529, repeated("é", 301) + "end");
    EXPECT_FALSE(analyze().has_value());
    EXPECT_EQ(log().back(), "[accent]   Claude HTTP error: " + repeated("é", 300));
}

TEST_F(Story, anErrorAnswerThatIsNoTextIsUnknown) {
    services->then(500, "\xff");
    EXPECT_FALSE(analyze().has_value());
    EXPECT_EQ(log().back(), "[accent]   Claude HTTP error: unknown");
}

TEST_F(Story, aRedirectIsAnErrorAnswer) {
    services->then(307, "elsewhere");
    EXPECT_FALSE(analyze().has_value());
    EXPECT_EQ(log().back(), "[accent]   Claude HTTP error: elsewhere");
}

TEST_F(Story, anAnswerWithoutTextIsShownByItsFirstTwoHundredCharacters) {
    for (const std::string body : {"[]", "no JSON", R"({"content": "text"})", R"({"content": []})",
                                   R"({"content": [{"type": "image"}]})", R"({"content": [{"type": "text"}]})"}) {
        services->then(200, body);
        EXPECT_FALSE(analyze().has_value());
        EXPECT_EQ(log().back(), parseError + body);
    }
    services->then(200, repeated("ü", 201));
    EXPECT_FALSE(analyze().has_value());
    EXPECT_EQ(log().back(), parseError + repeated("ü", 200));
}

TEST_F(Story, anAnswerThatIsNoTextAtAllIsEmpty) {
    services->then(200, "\xff");
    EXPECT_FALSE(analyze().has_value());
    EXPECT_EQ(log().back(), std::string(parseError) + "empty");
}

TEST_F(Story, aReplyInAFenceWithWordsAroundItIsRead) {
    givenStory("```json\n" + std::string(fixtureStory) + "\n```\n");
    EXPECT_TRUE(analyze());
    givenStory("Here is the story:\n" + std::string(fixtureStory) + "\nHope this helps!");
    EXPECT_TRUE(analyze());
    thenLogLacks("JSON decode error");
}

TEST_F(Story, aReplyWithAFieldMissingIsRecovered) {
    const std::string reply =
        R"({"segments": [{"startTime": 0.0, "endTime": 10.0}, {"startTime": 20.0, "endTime": 30.0}]})";
    givenStory(reply);
    const auto story = analyze();
    ASSERT_TRUE(story);
    EXPECT_THAT(lastLines(3),
                ElementsAre("[accent]   JSON decode error: segments[0].index is missing",
                            "[dim]   Response preview: " + reply + "...", "[green]   ✓ Recovered via manual parse"));
    EXPECT_THAT(story->segments, SizeIs(2));
    EXPECT_EQ(story->estimatedDuration, 20.0);
    EXPECT_EQ(story->structure.totalDuration, 20.0);
    EXPECT_THAT(story->structure.acts, IsEmpty());
}

TEST_F(Story, thePreviewHasThreeHundredCharactersAndAlwaysItsDots) {
    givenStory("{" + repeated("💎", 400) + "}");
    EXPECT_FALSE(analyze().has_value());
    EXPECT_THAT(lastLines(2), ElementsAre("[accent]   JSON decode error: the text is not valid JSON",
                                          "[dim]   Response preview: {" + repeated("💎", 299) + "..."));
}

TEST_F(Story, aReplyWithoutAnyObjectEndsWithTheTwoLines) {
    for (const std::string reply : {"I cannot do that.", "} and {", ""}) {
        givenStory(reply);
        EXPECT_FALSE(analyze().has_value());
        EXPECT_THAT(lastLines(2), ElementsAre("[accent]   JSON decode error: the text is not valid JSON",
                                              "[dim]   Response preview: " + reply + "..."));
    }
}

TEST_F(Story, whatPassesTheAuditIsKeptWithoutALine) {
    auto transcript = givenLoudAndQuiet();
    givenStory(replyOf({{0.0, 10.0}, {50.0, 80.0}}));
    const auto story = analyze(transcript);
    ASSERT_TRUE(story);
    EXPECT_THAT(story->segments, SizeIs(2));
    EXPECT_EQ(log().back(), "[dim] 🔑 API key found (anthropic-ke...)");
}

TEST_F(Story, theAuditTrimsRejectsAndRenumbersButLeavesTheRestOfTheReply) {
    auto transcript = givenLoudAndQuiet();
    // 45 s are trimmed to 30, 4.9 s are dropped without a line, B is too quiet, and the last one passes.
    givenStory(replyOf({{100.0, 145.0}, {0.0, 4.9}, {210.0, 220.0}, {20.0, 25.0}}));
    const auto story = analyze(transcript);
    ASSERT_TRUE(story);
    EXPECT_THAT(lastLines(3), ElementsAre("[accent]   ⚠ Trimming segment 0 from 45.0s to 30s",
                                          "[accent]   ✗ Reject seg 2: RMS -40.0dB < -20.0dB",
                                          "[dim]   Energy audit: 2 passed, 2 rejected"));
    ASSERT_THAT(story->segments, SizeIs(2));
    EXPECT_EQ(story->segments[0].endTime, 130.0);
    EXPECT_EQ(story->segments[1].index, 1);
    EXPECT_EQ(story->segments[1].startTime, 20.0);
    EXPECT_EQ(story->structure.acts.at(0).segments, (std::vector<std::int64_t>{0, 1, 2}));
    EXPECT_EQ(story->structure.totalDuration, 60.0);
    EXPECT_EQ(story->estimatedDuration, 61.0);
    EXPECT_THAT(story->subtitles, SizeIs(1));
}

TEST_F(Story, aRecoveredReplyIsAuditedLikeAnyOther) {
    auto transcript = givenLoudAndQuiet();
    givenStory(R"({"segments": [{"startTime": 210.0, "endTime": 220.0}]})");
    const auto story = analyze(transcript);
    ASSERT_TRUE(story);
    EXPECT_THAT(story->segments, IsEmpty());
    thenLogHas("[green]   ✓ Recovered via manual parse");
    EXPECT_EQ(log().back(), "[dim]   Energy audit: 0 passed, 1 rejected");
}

TEST_F(Story, aMomentOutsideEverySourceIsRejectedOnceAnythingWasMeasured) {
    auto transcript = givenLoudAndQuiet();
    givenStory(replyOf({{400.0, 410.0}}));
    EXPECT_THAT(analyze(transcript)->segments, IsEmpty());
    thenLogHas("[accent]   ✗ Reject seg 0: RMS -60.0dB < -20.0dB");
}

TEST_F(Story, withoutAnyAudioEveryMomentOfFiveSecondsPasses) {
    givenStory(replyOf({{0.0, 5.0}}));
    EXPECT_THAT(analyze()->segments, SizeIs(1));
}

TEST_F(Story, timeLimitsCanBeSetForEachKindOfRequest) {
    ServiceTimeouts timeouts;
    timeouts.transcription = 3s;
    timeouts.words = 2s;
    timeouts.messages = 1s;
    pipeline = LocalPipeline::create(platform, timeouts);
    const auto audio = disk.write("a.wav", "sound");
    givenTranscription("");
    givenWords("");
    givenStory(fixtureStory);
    (void)ended(pipeline->transcribeChunk(audio, "auto"));
    (void)ended(pipeline->transcribeWithWords(audio, "auto"));
    (void)analyze();
    ASSERT_THAT(services->requests, SizeIs(3));
    EXPECT_EQ(services->requests[0].timeout, 3s);
    EXPECT_EQ(services->requests[1].timeout, 2s);
    EXPECT_EQ(services->requests[2].timeout, 1s);
}
