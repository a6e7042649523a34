#include "platform/Http.h"

#include "fakes/CoroutineTest.h"
#include "fakes/RawServer.h"

#include <gmock/gmock.h>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

using namespace std::chrono_literals;
using namespace zuvo;
using namespace zuvo::tests;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr auto longTimeout = 15s;
constexpr auto shortTimeout = 200ms;
/// What would be sent a second time has been sent by then.
constexpr auto aWhile = 300ms;

/// A port whose queue of connections is full: whoever connects to it waits.
class FullPort {
public:
    FullPort() {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof(address);
        auto* general = reinterpret_cast<sockaddr*>(&address);
        m_sockets.push_back(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
        if (::bind(m_sockets[0], general, size) != 0 || ::listen(m_sockets[0], 0) != 0 ||
            ::getsockname(m_sockets[0], general, &size) != 0)
            throw std::runtime_error("No port could be listened on");
        m_port = ntohs(address.sin_port);
        constexpr int moreThanTheQueueHolds = 4;
        for (int i = 0; i < moreThanTheQueueHolds; ++i) {
            m_sockets.push_back(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
            (void)::connect(m_sockets.back(), general, size);
        }
    }
    ~FullPort() {
        for (const int socket : m_sockets)
            ::close(socket);
    }
    FullPort(const FullPort&) = delete;
    FullPort& operator=(const FullPort&) = delete;

    [[nodiscard]] int port() const { return m_port; }

private:
    std::vector<int> m_sockets;
    int m_port = 0;
};

class HttpFailure : public testing::Test {
protected:
    HttpRequest request(std::chrono::milliseconds timeout = longTimeout) const {
        return {server.url("/v1/messages"), {{"x-api-key", "key-1"}}, "the body", timeout};
    }

    HttpAnswer post(HttpRequest toSend) { return runToEnd(client.send(std::move(toSend))); }
    HttpAnswer post() { return post(request()); }

    void thenClosed(const HttpAnswer& got) {
        EXPECT_EQ(got.failure, "Connection closed");
        EXPECT_EQ(got.status, 0);
        EXPECT_EQ(got.body, "");
    }

    RawServer server;
    NetworkHttpClient client;
};

} // namespace

TEST_F(HttpFailure, aDroppedConnectionReachesTheServerExactlyOnce) {
    server.thenAlways(closeUnanswered());
    thenClosed(post());
    runEventLoop(aWhile);
    EXPECT_EQ(server.requests().size(), 1U);
    EXPECT_EQ(server.connectionCount(), 1);
}

TEST_F(HttpFailure, aResetConnectionReachesTheServerExactlyOnce) {
    server.thenAlways(resetUnanswered());
    thenClosed(post());
    runEventLoop(aWhile);
    EXPECT_EQ(server.requests().size(), 1U);
}

TEST_F(HttpFailure, anEmptyBodyIsNotSentTwiceEither) {
    server.thenAlways(closeUnanswered());
    auto toSend = request();
    toSend.body.clear();
    thenClosed(post(std::move(toSend)));
    runEventLoop(aWhile);
    EXPECT_EQ(server.requests().size(), 1U);
}

TEST_F(HttpFailure, aLargeBodyIsNotSentTwiceEither) {
    server.actBeforeBody();
    server.thenAlways(closeUnanswered());
    auto toSend = request();
    toSend.body.assign(10'000'000, 'b');
    const auto got = post(std::move(toSend));
    EXPECT_THAT(got.failure, Not(IsEmpty()));
    runEventLoop(aWhile);
    EXPECT_EQ(server.requests().size(), 1U);
}

TEST_F(HttpFailure, noConnectionIsUsedTwiceSinceTheServerMayCloseItThisMoment) {
    server.thenAlways(answer(httpAnswer(200, "fine", {"Connection: keep-alive"})));
    for (int round = 1; round <= 20; ++round) {
        const auto got = post();
        EXPECT_EQ(got.failure, "") << "round " << round;
        EXPECT_EQ(server.requests().size(), static_cast<std::size_t>(round));
        EXPECT_EQ(server.connectionCount(), round);
        server.closeConnections();
    }
}

TEST_F(HttpFailure, aConnectionIsClosedWithItsAnswer) {
    server.then(answer(httpAnswer(200, "fine", {"Connection: keep-alive"})));
    EXPECT_EQ(post().body, "fine");
    EXPECT_THAT(server.requests().front().header("Connection"), testing::ElementsAre("close"));
    EXPECT_TRUE(waitUntil([this] { return server.openConnectionCount() == 0; }));
}

TEST_F(HttpFailure, aCutBodyIsNoAnswer) {
    server.thenAlways(answerAndClose("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n{\"half\":"));
    thenClosed(post());
    runEventLoop(aWhile);
    EXPECT_EQ(server.requests().size(), 1U);
}

TEST_F(HttpFailure, aCutBodyOfAnErrorStatusIsNoAnswer) {
    server.thenAlways(answerAndClose("HTTP/1.1 500 Oops\r\nContent-Length: 100\r\n\r\nhalf"));
    thenClosed(post());
    EXPECT_EQ(server.requests().size(), 1U);
}

TEST_F(HttpFailure, aBodyCutBetweenItsChunksIsNoAnswer) {
    server.thenAlways(answerAndClose("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n"));
    thenClosed(post());
    EXPECT_EQ(server.requests().size(), 1U);
}

TEST_F(HttpFailure, aCutHeadIsNoAnswer) {
    for (const std::string head : {"HTTP/1.1 200 OK\r\nContent-Le", "HTTP/1.1 200 OK\r\n", "HTTP/1.1 2", "H"}) {
        const auto sentBefore = server.requests().size();
        server.then(answerAndClose(head));
        const auto got = post();
        EXPECT_THAT(got.failure, Not(IsEmpty())) << head;
        EXPECT_EQ(got.status, 0);
        runEventLoop(50ms);
        EXPECT_EQ(server.requests().size(), sentBefore + 1) << head;
    }
}

TEST_F(HttpFailure, whatIsNoHttpIsNoAnswer) {
    const std::vector<std::string> garbage = {
        "SSH-2.0-OpenSSH_9.2\r\n\r\n",  "\r\n\r\n\r\n\r\n",       std::string(5000, '\0'), "<html>hello</html>\n\n",
        "HTTP/1.1 abc Planned\r\n\r\n", "{\"text\":\"hello\"}\n", "HTTP/1.1\r\n\r\n"};
    for (const auto& bytes : garbage) {
        SCOPED_TRACE(bytes.substr(0, 40));
        const auto sentBefore = server.requests().size();
        server.then(answerAndClose(bytes));
        const auto got = post(request(2s));
        EXPECT_THAT(got.failure, Not(IsEmpty()));
        EXPECT_EQ(got.body, "");
        runEventLoop(50ms);
        EXPECT_EQ(server.requests().size(), sentBefore + 1);
    }
}

TEST_F(HttpFailure, aServerThatSaysNothingTimesOut) {
    server.then(stall());
    const auto got = post(request(shortTimeout));
    EXPECT_EQ(got.failure, "The request timed out");
    runEventLoop(aWhile);
    EXPECT_EQ(server.requests().size(), 1U);
}

TEST_F(HttpFailure, aServerThatFallsSilentWithinTheBodyTimesOut) {
    server.then(answer("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf"));
    EXPECT_EQ(post(request(shortTimeout)).failure, "The request timed out");
    EXPECT_EQ(server.requests().size(), 1U);
}

TEST_F(HttpFailure, aBodyThatTricklesDoesNotTimeOut) {
    server.then([](QTcpSocket& socket) {
        answer("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n")(socket);
        trickle("0123456789", 1, 100ms)(socket);
    });
    const auto got = post(request(500ms));
    EXPECT_EQ(got.failure, "");
    EXPECT_EQ(got.body, "0123456789");
}

TEST_F(HttpFailure, aSlowUploadDoesNotTimeOut) {
    server.readSlowly(200'000, 20ms);
    server.then(answer(httpAnswer(200, "got it")));
    auto toSend = request(1s);
    toSend.body.assign(20'000'000, 'b');
    const auto got = post(std::move(toSend));
    EXPECT_EQ(got.failure, "");
    EXPECT_EQ(got.body, "got it");
}

TEST_F(HttpFailure, anAnswerBeforeTheBodyHasBeenReadIsTheAnswer) {
    server.actBeforeBody();
    server.then(answer(httpAnswer(413, "too large")));
    auto toSend = request();
    toSend.body.assign(30'000'000, 'b');
    const auto got = post(std::move(toSend));
    EXPECT_EQ(got.failure, "");
    EXPECT_EQ(got.status, 413);
    EXPECT_EQ(got.body, "too large");
    runEventLoop(aWhile);
    EXPECT_EQ(server.requests().size(), 1U);
}

TEST_F(HttpFailure, anAnswerBeforeAResetIsReadWhileTheRequestIsStillBeingSent) {
    server.actBeforeBody();
    constexpr int rounds = 50;
    for (int round = 1; round <= rounds; ++round) {
        SCOPED_TRACE(round);
        server.then(answerAndReset(httpAnswer(401, "wrong key")));
        auto toSend = request();
        toSend.body.assign(10'000'000, 'b');
        const auto got = post(std::move(toSend));
        EXPECT_EQ(got.failure, "");
        EXPECT_EQ(got.status, 401);
        EXPECT_EQ(got.body, "wrong key");
    }
    EXPECT_EQ(server.requests().size(), static_cast<std::size_t>(rounds));
    EXPECT_EQ(server.connectionCount(), rounds);
}

TEST_F(HttpFailure, anAnswerWithoutALengthBeforeAResetIsReadToo) {
    server.actBeforeBody();
    server.then(answerAndReset("HTTP/1.1 403 No\r\n\r\nnot here"));
    auto toSend = request();
    toSend.body.assign(10'000'000, 'b');
    const auto got = post(std::move(toSend));
    EXPECT_EQ(got.status, 403);
    EXPECT_EQ(got.body, "not here");
}

TEST_F(HttpFailure, aServerOfOurOwnThatIsNotThereIsNamedInTheFailure) {
    QTcpServer gone;
    ASSERT_TRUE(gone.listen(QHostAddress::LocalHost));
    const auto port = std::to_string(gone.serverPort());
    gone.close();
    for (const std::string scheme : {"http://", "https://"}) {
        for (const std::string host : {"127.0.0.1:", "localhost:"}) {
            auto toSend = request();
            toSend.url = scheme + host + port + "/v1/messages?key=hidden";
            EXPECT_EQ(post(std::move(toSend)).failure, "Connection refused: " + scheme + host + port);
        }
    }
}

TEST_F(HttpFailure, aServerOfOurOwnThatLetsNobodyInIsNamedInTheFailure) {
    const FullPort full;
    auto toSend = request(shortTimeout);
    toSend.url = "http://127.0.0.1:" + std::to_string(full.port()) + "/v1/messages";
    EXPECT_EQ(post(std::move(toSend)).failure,
              "The request timed out: http://127.0.0.1:" + std::to_string(full.port()));
}

TEST_F(HttpFailure, anUnknownHostIsAFailureInWords) {
    auto toSend = request();
    toSend.url = "http://zuvo.invalid/";
    EXPECT_EQ(post(std::move(toSend)).failure, "Host zuvo.invalid not found");
}

TEST_F(HttpFailure, anAddressThatIsNoneIsAFailureInWords) {
    for (const std::string url : {"", "no address", "ftp://127.0.0.1/x", "http://", "data:,hello",
                                  "file:///etc/hostname", "http://a b/", "qrc:/x"}) {
        auto toSend = request();
        toSend.url = url;
        const auto got = post(std::move(toSend));
        EXPECT_THAT(got.failure, Not(IsEmpty())) << url;
        EXPECT_EQ(got.body, "") << url;
    }
}
