#include "account/APIClient.h"

#include "AccountFixture.h"

using namespace std::chrono_literals;
using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

class APIClientTest : public AccountTest {
protected:
    const RawRequest& sent() const { return server.requests().back(); }

    std::string requestFailure(const std::string& answerBytes) {
        server.then(answer(answerBytes));
        return failureOf<APIError>(client().request("/me"));
    }

    std::string userFailure(const std::string& body) {
        server.then(answer(httpAnswer(200, body)));
        return failureOf<APIError>(client().getMe("t"));
    }
};

} // namespace

TEST_F(APIClientTest, aRequestIsAGetOfTheJoinedAddressWithItsTwoHeaders) {
    server.then(answer(httpAnswer(200, "body")));
    EXPECT_EQ(runToEnd(client().request("/some/thing?x=1")), "body");
    ASSERT_EQ(requestCount(), 1U);
    EXPECT_EQ(sent().requestLine(), "GET /api/v1/some/thing?x=1 HTTP/1.1");
    EXPECT_THAT(sent().header("Content-Type"), ElementsAre("application/json"));
    EXPECT_THAT(sent().header("User-Agent"), ElementsAre("Zuvo-Manager/1.0.0"));
    EXPECT_THAT(sent().header("Authorization"), IsEmpty());
    EXPECT_EQ(sent().body, "");
}

TEST_F(APIClientTest, aTokenAMethodAndABodyGoOutAsGiven) {
    server.then(answer(httpAnswer(200, "")));
    EXPECT_EQ(runToEnd(client().request("/process", "zuvo_1", "PUT", "{\"a\":1}")), "");
    EXPECT_EQ(sent().requestLine(), "PUT /api/v1/process HTTP/1.1");
    EXPECT_THAT(sent().header("Authorization"), ElementsAre("Bearer zuvo_1"));
    EXPECT_THAT(sent().header("Content-Type"), ElementsAre("application/json"));
    EXPECT_EQ(sent().body, "{\"a\":1}");
}

TEST_F(APIClientTest, theBodyOfAnAnswerComesBackByteForByte) {
    const std::string bytes("a\0\xFF\r\n", 5);
    server.then(answer(httpAnswer(200, bytes)));
    EXPECT_EQ(runToEnd(client().request("/x")), bytes);
}

TEST_F(APIClientTest, everyStatusFrom200To299IsASuccess) {
    for (const int status : {200, 201, 250, 299}) {
        server.then(answer(httpAnswer(status, "fine")));
        EXPECT_EQ(runToEnd(client().request("/me")), "fine") << status;
    }
}

TEST_F(APIClientTest, aStatusOf300AndMoreFailsWithTheTextAsItStands) {
    EXPECT_EQ(requestFailure(httpAnswer(300, " choose\n")), "Server error 300:  choose\n");
    EXPECT_EQ(requestFailure(httpAnswer(401, "{\"error\":\"no\"}")), "Server error 401: {\"error\":\"no\"}");
    EXPECT_EQ(requestFailure(httpAnswer(500, "é")), "Server error 500: é");
    EXPECT_EQ(requestFailure(httpAnswer(599, "x")), "Server error 599: x");
}

TEST_F(APIClientTest, anErrorBodyThatIsNotUtf8ReadsUnknownErrorAndAnEmptyOneReadsEmpty) {
    EXPECT_EQ(requestFailure(httpAnswer(500, "caf\xE9")), "Server error 500: Unknown error");
    EXPECT_EQ(requestFailure(httpAnswer(500, "")), "Server error 500: ");
}

TEST_F(APIClientTest, anHttpErrorCarriesItsStatusCode) {
    server.then(answer(httpAnswer(401, "no")));
    try {
        runToEnd(client().getMe("t"));
        FAIL() << "it should have failed";
    } catch (const APIError& error) {
        EXPECT_EQ(error.kind(), APIError::Kind::httpError);
        EXPECT_EQ(error.statusCode(), 401);
    }
}

TEST_F(APIClientTest, aRedirectIsAFailureAndTheTokenGoesNowhereElse) {
    RawServer elsewhere;
    elsewhere.thenAlways(answer(httpAnswer(200, adaAsJson)));
    for (const int status : {301, 302, 303, 307, 308}) {
        server.then(answer(httpAnswer(status, "moved", {"Location: " + elsewhere.url("/api/v1/me")})));
        EXPECT_EQ(failureOf<APIError>(client().getMe("zuvo_1")), "Server error " + std::to_string(status) + ": moved");
    }
    EXPECT_EQ(requestCount(), 5U);
    EXPECT_EQ(elsewhere.connectionCount(), 0);
}

TEST_F(APIClientTest, aServiceThatIsNotThereIsANetworkError) {
    EXPECT_THAT(failureOf<APIError>(clientWithoutService().getVersion()), StartsWith("Network error: "));
    EXPECT_THAT(failureOf<APIError>(clientWithoutService().getVersion()), Not(testing::Eq("Network error: ")));
}

TEST_F(APIClientTest, aServiceThatSaysNothingIsANetworkError) {
    server.then(stall());
    EXPECT_EQ(failureOf<APIError>(client(100ms).getVersion()), "Network error: The request timed out");
}

TEST_F(APIClientTest, theTimeOutIsThePlatformsUnlessGiven) {
    EXPECT_EQ(APIClient(http, addressesAt(server.url())).timeout(), 60s);
}

TEST_F(APIClientTest, nothingIsAskedASecondTime) {
    server.thenAlways(closeUnanswered());
    EXPECT_EQ(failureOf<APIError>(client().getMe("t")), "Network error: Connection closed");
    runEventLoop(aWhile);
    EXPECT_EQ(requestCount(), 1U);
}

TEST_F(APIClientTest, whatIsNoHttpIsAFailure) {
    server.then(answerAndClose("SSH-2.0-OpenSSH_9.2\r\n\r\n"));
    EXPECT_THAT(failureOf<APIError>(client(2s).getVersion()), StartsWith("Network error: "));
}

TEST_F(APIClientTest, anEndpointThatMakesNoAddressFailsBeforeAnythingIsSent) {
    for (const std::string endpoint : {"/a b", "/a\r\nX: y", "/%zz", "/a\"b", "/<x>"})
        EXPECT_EQ(failureOf<APIError>(client().request(endpoint, "t")), "Invalid URL") << endpoint;
    runEventLoop(aWhile);
    EXPECT_EQ(server.connectionCount(), 0);
}

TEST_F(APIClientTest, aRefusedAddressIsANetworkErrorWithItsReason) {
    EXPECT_EQ(failureOf<APIError>(refusedClient().getMe("t")),
              "Network error: ZUVO_SERVICE_URL must be https, or http to this machine or a private network: "
              "http://service.example");
}

TEST_F(APIClientTest, aTokenWithALineEndIsNoHeaderOfItsOwnAndIsNotSent) {
    for (const std::string& token : {std::string("abc\r\nX-Evil: 1"), std::string("abc\nd"), std::string("abc\0d", 5)})
        EXPECT_EQ(failureOf<APIError>(client().getMe(token)),
                  "Network error: The value of the header Authorization holds a line end or another control character");
    EXPECT_EQ(server.connectionCount(), 0);
}

TEST_F(APIClientTest, getMeAsksForTheOwnerOfTheToken) {
    server.then(answer(httpAnswer(200, adaAsJson)));
    const auto user = runToEnd(client().getMe("zuvo_1"));
    EXPECT_EQ(user.id, "u1");
    EXPECT_EQ(user.name, "Ada");
    EXPECT_EQ(user.email, "ada@example.com");
    EXPECT_EQ(user.credits, 42);
    EXPECT_EQ(user.plan, "Studio");
    EXPECT_EQ(sent().requestLine(), "GET /api/v1/me HTTP/1.1");
    EXPECT_THAT(sent().header("Authorization"), ElementsAre("Bearer zuvo_1"));
}

TEST_F(APIClientTest, validatingATokenIsTheSameAsAskingForItsOwner) {
    server.then(answer(httpAnswer(200, bobAsJson)));
    EXPECT_EQ(runToEnd(client().validateToken("zuvo_2")).name, "Bob");
    EXPECT_EQ(sent().requestLine(), "GET /api/v1/me HTTP/1.1");
    EXPECT_THAT(sent().header("Authorization"), ElementsAre("Bearer zuvo_2"));
}

TEST_F(APIClientTest, anOwnerWithoutAPlanFailsSinceAllFiveKeysAreRequired) {
    EXPECT_EQ(userFailure(R"({"id":"u1","name":"Ada","email":"a@b","credits":42})"),
              "Failed to parse response: plan is missing");
}

TEST_F(APIClientTest, answersOfAnotherShapeFailToParse) {
    const std::vector<std::string> bodies = {
        "",
        "null",
        "[]",
        "\"text\"",
        "{}",
        "{\"id\":",
        "<html></html>",
        "\xFF\xFE",
        "[" + adaAsJson + "]",
        R"({"id":1,"name":"Ada","email":"a@b","credits":42,"plan":"Free"})",
        R"({"id":"u1","name":null,"email":"a@b","credits":42,"plan":"Free"})",
        R"({"id":"u1","name":"Ada","email":"a@b","credits":42.5,"plan":"Free"})",
        R"({"id":"u1","name":"Ada","email":"a@b","credits":"42","plan":"Free"})",
        R"({"id":"u1","name":"Ada","email":"a@b","credits":1e400,"plan":"Free"})",
        R"({"id":"u1","name":"Ada","email":"a@b","credits":99999999999999999999,"plan":"Free"})",
        "{\"id\":\"u1\",\"name\":\"\xC3\",\"email\":\"a@b\",\"credits\":42,\"plan\":\"Free\"}",
        std::string(100'000, '['),
    };
    for (const auto& body : bodies)
        EXPECT_THAT(userFailure(body), StartsWith("Failed to parse response: ")) << body.substr(0, 80);
}

TEST_F(APIClientTest, creditsMayBeNegativeAndUnknownKeysArePassedOver) {
    server.then(answer(
        httpAnswer(200, R"({"id":"","name":"","email":"","credits":-3.0,"plan":"","more":{"deep":[1]},"id2":2})")));
    EXPECT_EQ(runToEnd(client().getMe("t")).credits, -3);
}

TEST_F(APIClientTest, theVersionIsAskedForWithoutAToken) {
    server.then(answer(httpAnswer(200, R"({"version":"1.2.0","download_url":"https://a/b.zip","release_notes":"n"})")));
    const auto version = runToEnd(client().getVersion());
    EXPECT_EQ(version.version, "1.2.0");
    EXPECT_EQ(version.downloadURL, "https://a/b.zip");
    EXPECT_EQ(version.releaseNotes, "n");
    EXPECT_EQ(sent().requestLine(), "GET /api/v1/version HTTP/1.1");
    EXPECT_THAT(sent().header("Authorization"), IsEmpty());
}

TEST_F(APIClientTest, aVersionAloneDecodesWithNeitherDownloadNorNotes) {
    server.then(answer(httpAnswer(200, R"({"version":"1.2.0","downloadURL":"not this key"})")));
    const auto version = runToEnd(client().getVersion());
    EXPECT_EQ(version.version, "1.2.0");
    EXPECT_EQ(version.downloadURL, std::nullopt);
    EXPECT_EQ(version.releaseNotes, std::nullopt);
}

TEST_F(APIClientTest, aTaskOutlivesTheClientThatStartedIt) {
    server.then(answerAfter(50ms, httpAnswer(200, adaAsJson)));
    auto passing = std::make_unique<APIClient>(client());
    RunningTask<UserInfo> task(passing->getMe("t"));
    passing.reset();
    EXPECT_EQ(task.result().name, "Ada");
}
