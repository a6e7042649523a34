// A server that does everything wrong in the place of the paid services: the log ends in the line that its row stands
// for, without the key, and each request has been sent once.

#include "fakes/HostileRows.h"
#include "fakes/RawServer.h"
#include "fakes/pipeline/PipelineFixture.h"

using namespace zuvo;
using namespace zuvo::tests;

namespace {

constexpr std::size_t answerLimit = 2UL * 1024 * 1024;

bool isSuccess(const HostileOutcome& outcome) {
    return outcome.status >= 200 && outcome.status <= 299;
}

/// The first `most` of the row's characters, the key masked; the long bodies are of one letter.
std::string shown(const std::string& body, std::size_t most) {
    if (body == "\xFF\xFE")
        return "unknown";
    const auto at = body.find(repeatedKey);
    const auto masked =
        at == std::string::npos ? body : body.substr(0, at) + "***" + body.substr(at + std::string(repeatedKey).size());
    return masked.substr(0, most);
}

std::string transcriptionLine(const HostileOutcome& outcome) {
    if (!outcome.failure.empty())
        return "[accent]   Whisper request failed: " + outcome.failure;
    if (isSuccess(outcome))
        return "[accent]   Whisper request failed: the text is not valid JSON";
    return "[accent]   Whisper error: " + shown(outcome.body, 200);
}

std::string messagesLine(const HostileOutcome& outcome) {
    if (!outcome.failure.empty())
        return "[accent]   Claude request failed: " + outcome.failure;
    if (isSuccess(outcome))
        return "[accent]   Claude response parse error: " + shown(outcome.body, 200);
    return "[accent]   Claude HTTP error: " + shown(outcome.body, 300);
}

class HostileServices : public PipelineFixture {
protected:
    void givenServer(RawServer& server, const HostileRow& row) {
        if (row.actsBeforeBody)
            server.actBeforeBody();
        server.then(row.behaviour);
        variables["OPENAI_API_KEY"] = repeatedKey;
        variables["ANTHROPIC_API_KEY"] = repeatedKey;
        variables["OPENAI_BASE_URL"] = server.url("/v1");
        variables["ANTHROPIC_BASE_URL"] = server.url();
        platform.http = std::make_shared<NetworkHttpClient>(answerLimit);
        ServiceTimeouts timeouts;
        timeouts.transcription = row.timeout();
        timeouts.messages = row.timeout();
        pipeline = LocalPipeline::create(platform, timeouts);
    }

    static void thenItWasSentOnce(const RawServer& server) {
        EXPECT_EQ(server.requests().size(), 1U);
        EXPECT_EQ(server.connectionCount(), 1);
    }
};

} // namespace

TEST_F(HostileServices, eachTranscriptionEndsInTheLineOfItsRow) {
    const auto chunk = disk.write("audio/chunk.wav", std::string(3'000'000, 's'));
    for (const auto& row : hostileRows(answerLimit)) {
        SCOPED_TRACE(row.name);
        RawServer server;
        givenServer(server, row);
        EXPECT_FALSE(ended(pipeline->transcribeChunk(chunk, "auto")));
        EXPECT_EQ(log().back(), transcriptionLine(row.outcome));
        thenLogLacks(repeatedKey);
        thenItWasSentOnce(server);
    }
}

TEST_F(HostileServices, eachStoryEndsInTheLineOfItsRow) {
    TranscriptResult transcript;
    transcript.segments = {{0.0, 10.0, "Words.", "en"}};
    transcript.language = "en";
    for (const auto& row : hostileRows(answerLimit)) {
        SCOPED_TRACE(row.name);
        RawServer server;
        givenServer(server, row);
        EXPECT_FALSE(ended(pipeline->analyzeStory(transcript, 5.0, "auto", "")));
        EXPECT_EQ(log().back(), messagesLine(row.outcome));
        thenLogLacks(repeatedKey);
        thenItWasSentOnce(server);
    }
}
