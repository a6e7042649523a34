#include "standin/MessagesService.h"
#include "standin/TranscriptionService.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

using namespace zuvo::standin;
using nlohmann::json;

namespace {

std::string field(const std::string& name, const std::string& value) {
    return "--B\r\nContent-Disposition: form-data; name=\"" + name + "\"\r\n\r\n" + value + "\r\n";
}

/// Two seconds of silence, 8 kHz mono, as a WAV file.
std::string silentWav() {
    const std::string head(
        "RIFF\x24\x7D\0\0WAVEfmt \x10\0\0\0\x01\0\x01\0\x40\x1F\0\0\x80\x3E\0\0\x02\0\x10\0data\0\x7D\0\0", 44);
    return head + std::string(32000, '\0');
}

std::string file(const std::string& bytes) {
    return "--B\r\nContent-Disposition: form-data; name=\"file\"; filename=\"a.wav\"\r\nContent-Type: "
           "audio/wav\r\n\r\n" +
           bytes + "\r\n";
}

RecordedRequest transcriptionRequest(const std::string& fields) {
    return {Service::transcription,
            "POST",
            "/v1/audio/transcriptions",
            {{"authorization", "Bearer key"}, {"content-type", "multipart/form-data; boundary=B"}},
            fields + "--B--\r\n",
            1};
}

std::string standardFields(const std::string& granularity) {
    return field("model", "whisper-1") + field("response_format", "verbose_json") +
           field("timestamp_granularities[]", granularity);
}

json bodyOf(const Answer& answer) {
    return json::parse(answer.body);
}

TEST(TranscriptionService, segmentGranularityGivesSegmentsAndNoWords) {
    const Answer answer = answerTranscription(transcriptionRequest(standardFields("segment") + file(silentWav())), {});
    ASSERT_EQ(answer.status, 200) << answer.body;
    EXPECT_EQ(bodyOf(answer), json::parse(R"({"task":"transcribe","language":"english","duration":2.0,"text":"",
                                              "segments":[]})"));
}

TEST(TranscriptionService, wordGranularityGivesWordsAndNoSegments) {
    const Answer answer = answerTranscription(transcriptionRequest(standardFields("word") + file(silentWav())), {});
    ASSERT_EQ(answer.status, 200) << answer.body;
    EXPECT_TRUE(bodyOf(answer).contains("words"));
    EXPECT_FALSE(bodyOf(answer).contains("segments"));
}

TEST(TranscriptionService, theLanguageAskedForIsReported) {
    const Answer answer = answerTranscription(
        transcriptionRequest(standardFields("segment") + field("language", "no") + file(silentWav())), {});
    EXPECT_EQ(bodyOf(answer).at("language"), "no");
}

TEST(TranscriptionService, withoutAKeyItIsUnauthorised) {
    for (const char* value : {"", "Bearer ", "Bearer", "Basic abc"}) {
        RecordedRequest request = transcriptionRequest(standardFields("segment") + file(silentWav()));
        request.headers[0].second = value;
        const Answer answer = answerTranscription(request, {});
        EXPECT_EQ(answer.status, 401) << value;
        EXPECT_TRUE(bodyOf(answer).at("error").at("message").is_string());
    }
}

TEST(TranscriptionService, anotherMethodIsNotAllowed) {
    RecordedRequest request = transcriptionRequest("");
    request.method = "GET";
    EXPECT_EQ(answerTranscription(request, {}).status, 405);
}

TEST(TranscriptionService, whatCannotBeReadIsABadRequest) {
    const std::string sound = file(silentWav());
    for (const std::string& fields :
         {std::string("junk"), standardFields("segment"), standardFields("segment") + file("no sound"),
          standardFields("syllable") + sound, field("response_format", "verbose_json") + sound,
          field("model", "whisper-1") + field("response_format", "poem") + sound}) {
        const Answer answer = answerTranscription(transcriptionRequest(fields), {});
        EXPECT_EQ(answer.status, 400) << fields.substr(0, 200);
        EXPECT_EQ(bodyOf(answer).at("error").at("type"), "invalid_request_error");
    }
}

RecordedRequest messagesRequest(const json& body) {
    return {Service::messages,
            "POST",
            "/v1/messages",
            {{"x-api-key", "key"}, {"anthropic-version", "2023-06-01"}, {"content-type", "application/json"}},
            body.dump(),
            1};
}

json bodyWith(const std::string& prompt) {
    return {{"model", "a-model"}, {"max_tokens", 8000}, {"messages", {{{"role", "user"}, {"content", prompt}}}}};
}

constexpr const char* storyPrompt = "- Target edit: 1 min (60s)\n[0.0-5.0s] 🔊 We built a boat.\n"
                                    "[5.0-10.0s] 🔊 She floated.\n[10.0-15.0s] 🔇 Really?\n";

TEST(MessagesService, theReplyIsAStoryAsText) {
    const Answer answer = answerMessages(messagesRequest(bodyWith(storyPrompt)));
    ASSERT_EQ(answer.status, 200) << answer.body;
    const json content = bodyOf(answer).at("content");
    ASSERT_EQ(content.size(), 1U);
    EXPECT_EQ(content[0].at("type"), "text");
    const json story = json::parse(content[0].at("text").get<std::string>());
    ASSERT_EQ(story.at("segments").size(), 1U);
    EXPECT_EQ(story.at("segments")[0].at("startTime"), 0.0);
    EXPECT_EQ(story.at("segments")[0].at("endTime"), 10.0);
}

TEST(MessagesService, aPromptInTextBlocksIsReadToo) {
    json body = bodyWith("");
    body["messages"][0]["content"] = {{{"type", "text"}, {"text", storyPrompt}}};
    EXPECT_EQ(answerMessages(messagesRequest(body)).status, 200);
}

TEST(MessagesService, aReplyTextOfTheTestsIsSaidInstead) {
    const Answer answer = answerMessages(messagesRequest(bodyWith("Good morning")), "```json\n{}\n```");
    ASSERT_EQ(answer.status, 200);
    EXPECT_EQ(bodyOf(answer).at("content")[0].at("text"), "```json\n{}\n```");
}

TEST(MessagesService, withoutAKeyItIsUnauthorised) {
    RecordedRequest request = messagesRequest(bodyWith(storyPrompt));
    request.headers[0].second = "";
    const Answer empty = answerMessages(request);
    EXPECT_EQ(empty.status, 401);
    EXPECT_EQ(bodyOf(empty).at("error").at("type"), "authentication_error");
    request.headers.erase(request.headers.begin());
    EXPECT_EQ(answerMessages(request).status, 401);
}

TEST(MessagesService, versionAndContentTypeAreAskedFor) {
    RecordedRequest noVersion = messagesRequest(bodyWith(storyPrompt));
    noVersion.headers[1].second = "";
    EXPECT_EQ(answerMessages(noVersion).status, 400);
    RecordedRequest otherType = messagesRequest(bodyWith(storyPrompt));
    otherType.headers[2].second = "text/plain";
    EXPECT_EQ(answerMessages(otherType).status, 400);
}

TEST(MessagesService, anotherMethodIsNotAllowed) {
    RecordedRequest request = messagesRequest(bodyWith(storyPrompt));
    request.method = "PUT";
    EXPECT_EQ(answerMessages(request).status, 405);
}

TEST(MessagesService, aBodyOfAnotherShapeIsABadRequest) {
    json noModel = bodyWith(storyPrompt);
    noModel.erase("model");
    json noLimit = bodyWith(storyPrompt);
    noLimit["max_tokens"] = "8000";
    json noMessage = bodyWith(storyPrompt);
    noMessage["messages"] = json::array();
    json otherRole = bodyWith(storyPrompt);
    otherRole["messages"][0]["role"] = "assistant";
    for (const json& body : {noModel, noLimit, noMessage, otherRole, json::array()})
        EXPECT_EQ(answerMessages(messagesRequest(body)).status, 400) << body;
    RecordedRequest noJson = messagesRequest({});
    noJson.body = "{\"model\":";
    EXPECT_EQ(answerMessages(noJson).status, 400);
}

TEST(MessagesService, aPromptThatAsksForNoStoryIsABadRequest) {
    const Answer answer = answerMessages(messagesRequest(bodyWith("Good morning")));
    EXPECT_EQ(answer.status, 400);
    EXPECT_EQ(bodyOf(answer).at("error").at("type"), "invalid_request_error");
}

} // namespace
