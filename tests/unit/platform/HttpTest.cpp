#include "platform/Http.h"

#include "fakes/CoroutineTest.h"
#include "fakes/RawServer.h"

#include <gmock/gmock.h>

using namespace std::chrono_literals;
using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr auto ampleTime = 15s;
/// What would be sent a second time has been sent by then.
constexpr auto aShortPause = 300ms;

class Http : public testing::Test {
protected:
    HttpRequest request(const std::string& path = "/v1/messages") const {
        return {server.url(path), {{"x-api-key", "key-1"}}, "the body", ampleTime};
    }

    HttpAnswer post(HttpRequest toSend) { return runToEnd(client->send(std::move(toSend))); }
    HttpAnswer post() { return post(request()); }

    RawServer server;
    std::unique_ptr<NetworkHttpClient> client = std::make_unique<NetworkHttpClient>();
};

} // namespace

TEST_F(Http, methodPathHeadersAndBodyArriveAsGiven) {
    server.then(answer(httpAnswer(200, "fine")));
    auto toSend = request("/v1/audio/transcriptions");
    toSend.headers = {{"Authorization", "Bearer abc"}, {"Content-Type", "multipart/form-data; boundary=Boundary-1"}};
    toSend.body = std::string("a\0b\r\n\r\n\xFF\xC3", 10);
    const auto body = toSend.body;
    const auto got = post(std::move(toSend));

    EXPECT_TRUE(got.isSuccess());
    EXPECT_FALSE(got.hasFailed());
    EXPECT_EQ(got.status, 200);
    EXPECT_EQ(got.body, "fine");
    ASSERT_EQ(server.requests().size(), 1U);
    const auto& sent = server.requests().front();
    EXPECT_EQ(sent.requestLine(), "POST /v1/audio/transcriptions HTTP/1.1");
    EXPECT_THAT(sent.header("Authorization"), ElementsAre("Bearer abc"));
    EXPECT_THAT(sent.header("Content-Type"), ElementsAre("multipart/form-data; boundary=Boundary-1"));
    EXPECT_THAT(sent.header("Content-Length"), ElementsAre("10"));
    EXPECT_EQ(sent.body, body);
}

TEST_F(Http, aBodyOfTenMegabytesArrivesWhole) {
    server.then(answer(httpAnswer(200, "")));
    std::string body(10'000'000, '\0');
    for (std::size_t i = 0; i < body.size(); ++i)
        body[i] = static_cast<char>((i * 31 + i / 257) % 256);
    auto toSend = request();
    toSend.body = body;
    EXPECT_EQ(post(std::move(toSend)).status, 200);
    ASSERT_EQ(server.requests().size(), 1U);
    EXPECT_TRUE(server.requests().front().body == body);
}

TEST_F(Http, anEmptyBodyIsSentAsSuch) {
    server.then(answer(httpAnswer(200, "")));
    auto toSend = request();
    toSend.body.clear();
    EXPECT_EQ(post(std::move(toSend)).status, 200);
    ASSERT_EQ(server.requests().size(), 1U);
    EXPECT_THAT(server.requests().front().header("Content-Length"), ElementsAre("0"));
}

TEST_F(Http, anAnswerOfAFewMegabytesComesBackWhole) {
    const std::string body(5'000'000, 'y');
    server.then(answer(httpAnswer(200, body)));
    EXPECT_TRUE(post().body == body);
}

TEST_F(Http, everyStatusComesBackWithItsBody) {
    for (const int status :
         {200, 201, 204, 299, 400, 401, 403, 404, 405, 407, 409, 413, 418, 429, 500, 502, 503, 529}) {
        SCOPED_TRACE(status);
        const std::string body = status == 204 ? "" : R"({"error":"number )" + std::to_string(status) + "\"}";
        server.then(answer(httpAnswer(status, body)));
        const auto sentBefore = server.requests().size();
        const auto got = post();
        EXPECT_EQ(got.failure, "");
        EXPECT_EQ(got.status, status);
        EXPECT_EQ(got.body, body);
        EXPECT_EQ(got.isSuccess(), status < 300);
        runEventLoop(20ms);
        EXPECT_EQ(server.requests().size(), sentBefore + 1);
    }
}

TEST_F(Http, aChallengeForAPasswordIsAnAnswerLikeAnyOther) {
    const std::vector<std::string> challenges = {"WWW-Authenticate: Basic realm=\"x\"", "WWW-Authenticate: Bearer",
                                                 "WWW-Authenticate: Digest realm=\"x\", nonce=\"1\", qop=\"auth\"",
                                                 "WWW-Authenticate: Negotiate"};
    for (const auto& challenge : challenges) {
        SCOPED_TRACE(challenge);
        const auto sentBefore = server.requests().size();
        server.then(answer(httpAnswer(401, "wrong key", {challenge})));
        const auto got = post();
        EXPECT_EQ(got.failure, "");
        EXPECT_EQ(got.status, 401);
        EXPECT_EQ(got.body, "wrong key");
        runEventLoop(aShortPause);
        EXPECT_EQ(server.requests().size(), sentBefore + 1);
    }
}

TEST_F(Http, aProxysChallengeFromAServiceIsAnAnswerLikeAnyOther) {
    server.then(answer(httpAnswer(407, "who are you", {"Proxy-Authenticate: Basic realm=\"x\""})));
    const auto got = post();
    EXPECT_EQ(got.failure, "");
    EXPECT_EQ(got.status, 407);
    EXPECT_EQ(got.body, "who are you");
    runEventLoop(aShortPause);
    EXPECT_EQ(server.requests().size(), 1U);
}

TEST_F(Http, aRedirectIsNotFollowedAndCarriesNoKeyAnywhere) {
    RawServer elsewhere;
    for (const int status : {301, 302, 303, 307, 308}) {
        SCOPED_TRACE(status);
        server.then(answer(httpAnswer(status, "moved", {"Location: " + elsewhere.url("/v1/messages")})));
        const auto got = post();
        EXPECT_EQ(got.failure, "");
        EXPECT_EQ(got.status, status);
        EXPECT_EQ(got.body, "moved");
        EXPECT_FALSE(got.isSuccess());
    }
    runEventLoop(aShortPause);
    EXPECT_EQ(elsewhere.connectionCount(), 0);
    EXPECT_EQ(server.requests().size(), 5U);
}

TEST_F(Http, noCookieIsKept) {
    server.then(answer(httpAnswer(200, "", {"Set-Cookie: session=1; Path=/"})));
    server.then(answer(httpAnswer(200, "")));
    post();
    post();
    ASSERT_EQ(server.requests().size(), 2U);
    EXPECT_THAT(server.requests().back().header("Cookie"), IsEmpty());
}

TEST_F(Http, aHeaderValueWithALineEndIsRefusedAndNothingIsSent) {
    const std::vector<std::string> values = {"key\r\nX-Other: 1", "key\n", "key\rmore", std::string("key\0more", 8),
                                             "\x7F"};
    for (const auto& value : values) {
        auto toSend = request();
        toSend.headers = {{"x-api-key", value}};
        const auto got = post(std::move(toSend));
        EXPECT_TRUE(got.hasFailed());
        EXPECT_THAT(got.failure, HasSubstr("x-api-key"));
        EXPECT_THAT(got.failure, Not(HasSubstr("more")));
    }
    runEventLoop(aShortPause);
    EXPECT_EQ(server.connectionCount(), 0);
}

TEST_F(Http, twoRequestsAtOnceGetTheirOwnAnswers) {
    server.then(answerAfter(100ms, httpAnswer(200, "slow")));
    server.then(answer(httpAnswer(201, "quick")));
    RunningTask<HttpAnswer> first(client->send(request("/first")));
    ASSERT_TRUE(waitUntil([this] { return server.requests().size() == 1; }));
    RunningTask<HttpAnswer> second(client->send(request("/second")));
    EXPECT_EQ(second.result().body, "quick");
    EXPECT_FALSE(first.hasEnded());
    EXPECT_EQ(first.result().body, "slow");
    EXPECT_EQ(server.requests().size(), 2U);
}

TEST_F(Http, aRequestThatWaitsEndsWithItsClient) {
    server.then(stall());
    RunningTask<HttpAnswer> waiting(client->send(request()));
    ASSERT_TRUE(waitUntil([this] { return server.requests().size() == 1; }));
    client.reset();
    const auto got = waiting.result();
    EXPECT_TRUE(got.hasFailed());
    EXPECT_EQ(got.failure, "The program ended the request");
}

TEST_F(Http, aPackedAnswerIsUnpacked) {
    const auto packed = qCompress(QByteArray(200'000, 'z')).mid(4).toStdString();
    server.then(answer(httpAnswer(200, packed, {"Content-Encoding: deflate"})));
    const auto got = post();
    EXPECT_EQ(got.failure, "");
    EXPECT_TRUE(got.body == std::string(200'000, 'z'));
}

TEST_F(Http, anAnswerOfExactlyTheLimitIsTaken) {
    client = std::make_unique<NetworkHttpClient>(1000);
    server.then(answer(httpAnswer(200, std::string(1000, 'a'))));
    server.then(answer(httpAnswer(200, std::string(1001, 'a'))));
    EXPECT_EQ(post().body.size(), 1000U);
    EXPECT_EQ(post().failure, "The answer is too long");
}

TEST_F(Http, anEndlessAnswerIsBrokenOffAtTheLimit) {
    client = std::make_unique<NetworkHttpClient>(1'000'000);
    server.then(answerEndlessly("HTTP/1.1 200 OK\r\n\r\n"));
    const auto got = post();
    EXPECT_EQ(got.failure, "The answer is too long");
    EXPECT_EQ(got.body, "");
    EXPECT_TRUE(waitUntil([this] { return server.openConnectionCount() == 0; }));
}

TEST_F(Http, anAnswerThatUnpacksBeyondTheLimitIsTooLong) {
    client = std::make_unique<NetworkHttpClient>(100'000);
    const auto packed = qCompress(QByteArray(5'000'000, 'z')).mid(4).toStdString();
    ASSERT_LT(packed.size(), 100'000U);
    server.then(answer(httpAnswer(200, packed, {"Content-Encoding: deflate"})));
    const auto got = post();
    EXPECT_EQ(got.failure, "The answer is too long");
    EXPECT_EQ(got.body, "");
}
