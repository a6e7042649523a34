// Requests other than POST, which the network access would repeat by itself if it could.

#include "fakes/CoroutineTest.h"
#include "fakes/RawServer.h"
#include "platform/Http.h"

#include <gmock/gmock.h>

using namespace std::chrono_literals;
using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

/// What would be sent a second time has been sent by then.
constexpr auto aShortWhile = 300ms;

class HttpMethod : public testing::Test {
protected:
    HttpRequest get(const std::string& path = "/api/v1/me") const {
        HttpRequest request;
        request.url = server.url(path);
        request.headers = {{"Authorization", "Bearer key-1"}};
        request.timeout = 15s;
        request.method = "GET";
        return request;
    }

    HttpAnswer send(HttpRequest request) { return runToEnd(client.send(std::move(request))); }

    RawServer server;
    NetworkHttpClient client;
};

} // namespace

TEST_F(HttpMethod, theMethodStandsOnTheWireAsGiven) {
    for (const std::string method : {"GET", "PUT", "DELETE", "PATCH", "POST"}) {
        server.then(answer(httpAnswer(200, "fine")));
        auto request = get("/path?query=1");
        request.method = method;
        EXPECT_EQ(send(std::move(request)).body, "fine");
        EXPECT_EQ(server.requests().back().requestLine(), method + " /path?query=1 HTTP/1.1");
        EXPECT_THAT(server.requests().back().header("Authorization"), ElementsAre("Bearer key-1"));
    }
}

TEST_F(HttpMethod, aRequestIsAPostUnlessItSaysOtherwise) {
    EXPECT_EQ(HttpRequest().method, "POST");
}

TEST_F(HttpMethod, aGetHasAnEmptyBody) {
    server.then(answer(httpAnswer(200, "fine")));
    EXPECT_EQ(send(get()).status, 200);
    EXPECT_EQ(server.requests().front().body, "");
    EXPECT_THAT(server.requests().front().header("Transfer-Encoding"), IsEmpty());
}

TEST_F(HttpMethod, aGetWhoseConnectionIsClosedUnansweredIsSentOnce) {
    server.thenAlways(closeUnanswered());
    EXPECT_EQ(send(get()).failure, "Connection closed");
    runEventLoop(aShortWhile);
    EXPECT_EQ(server.requests().size(), 1U);
    EXPECT_EQ(server.connectionCount(), 1);
}

TEST_F(HttpMethod, aGetWhoseConnectionIsResetIsSentOnce) {
    server.thenAlways(resetUnanswered());
    EXPECT_THAT(send(get()).failure, Not(IsEmpty()));
    runEventLoop(aShortWhile);
    EXPECT_EQ(server.requests().size(), 1U);
}

TEST_F(HttpMethod, aGetFollowsNoRedirectAndItsKeyGoesNowhereElse) {
    RawServer elsewhere;
    elsewhere.thenAlways(answer(httpAnswer(200, "caught")));
    for (const int status : {301, 302, 303, 307, 308}) {
        server.then(answer(httpAnswer(status, "moved", {"Location: " + elsewhere.url("/api/v1/me")})));
        const auto got = send(get());
        EXPECT_EQ(got.failure, "") << status;
        EXPECT_EQ(got.status, status);
        EXPECT_EQ(got.body, "moved") << status;
    }
    runEventLoop(aShortWhile);
    EXPECT_EQ(server.requests().size(), 5U);
    EXPECT_EQ(elsewhere.connectionCount(), 0);
}

TEST_F(HttpMethod, aGetFollowsNoRedirectOnTheSameServerEither) {
    server.thenAlways(answer(httpAnswer(302, "", {"Location: /elsewhere"})));
    EXPECT_EQ(send(get()).status, 302);
    runEventLoop(aShortWhile);
    EXPECT_EQ(server.requests().size(), 1U);
}

TEST_F(HttpMethod, aChallengeToAGetIsAnAnswerAndIsNotMet) {
    server.thenAlways(answer(httpAnswer(401, "who?", {"WWW-Authenticate: Basic realm=\"x\""})));
    const auto got = send(get());
    EXPECT_EQ(got.status, 401);
    EXPECT_EQ(got.body, "who?");
    runEventLoop(aShortWhile);
    EXPECT_EQ(server.requests().size(), 1U);
}

TEST_F(HttpMethod, anAnswerThatRefusesTheKeyAndIsCutIsNoAnswer) {
    for (int round = 0; round < 20; ++round) {
        server.then(answerAndClose("HTTP/1.1 401 No\r\nContent-Length: 100\r\n\r\nhalf"));
        const auto got = send(get());
        EXPECT_EQ(got.failure, "Connection closed");
        EXPECT_EQ(got.status, 0);
    }
}
