#include "platform/Download.h"

#include "fakes/CoroutineTest.h"
#include "fakes/RawServer.h"
#include "fakes/TemporaryFolder.h"

#include <filesystem>
#include <gmock/gmock.h>

using namespace std::chrono_literals;
using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class Download : public testing::Test {
protected:
    std::string fetch(const std::string& url) {
        return runToEnd(NetworkDownloader(limits).fetch(url, disk / "file")).failure;
    }
    std::string fetch() { return fetch(server.url("/p.zip")); }

    Behaviour redirectTo(const std::string& location, int status = 302) {
        return answer(httpAnswer(status, "elsewhere", {"Location: " + location}));
    }

    void thenNothingIsLeft() const { EXPECT_TRUE(std::filesystem::is_empty(disk.path())); }

    TemporaryFolder disk;
    RawServer server;
    DownloadLimits limits;
};

} // namespace

TEST(DownloadAddress, isHttpsOrThisMachine) {
    for (const auto* url : {"https://downloads.test/p.zip", "https://downloads.test:444/p?x=1#y", "HTTPS://d.test",
                            "http://127.0.0.1:8080/p", "http://127.3.2.1/", "http://localhost/p", "http://[::1]:80/p"})
        EXPECT_TRUE(isDownloadAddress(url)) << url;
}

TEST(DownloadAddress, isNothingElse) {
    for (const auto* url :
         {"", "p.zip", "//downloads.test/p", "http://downloads.test/p", "http://10.0.0.1/", "http://192.168.0.1/",
          "http://0.0.0.0/", "http://127.1/", "http://2130706433/", "http://localhost.evil.test/", "https://",
          "https:///p", "https://a b/", "ftp://127.0.0.1/", "file:///etc/passwd", "data:,x", "http://[::2]/",
          "http://x@evil.test/127.0.0.1", "https://a\nb/"})
        EXPECT_FALSE(isDownloadAddress(url)) << url;
}

TEST_F(Download, theFileHoldsTheAnswersBytes) {
    const std::string body("PK\x03\x04\0\xFF\r\n", 8);
    server.then(answer(httpAnswer(200, body)));
    EXPECT_EQ(fetch(), "");
    EXPECT_EQ(disk.read("file"), body);
    ASSERT_THAT(server.requests(), SizeIs(1));
    EXPECT_EQ(server.requests()[0].requestLine(), "GET /p.zip HTTP/1.1");
}

TEST_F(Download, theRequestHasNoHeadersOfOurs) {
    server.then(answer(httpAnswer(200, "")));
    EXPECT_EQ(fetch(), "");
    const auto& request = server.requests().at(0);
    for (const auto* name : {"Authorization", "Cookie", "Content-Type", "x-api-key"})
        EXPECT_THAT(request.header(name), IsEmpty()) << name;
    EXPECT_THAT(request.header("User-Agent"), ElementsAre(testing::Not(HasSubstr("Zuvo"))));
}

TEST_F(Download, tenMegabytesArriveWhole) {
    std::string body(10'000'000, '\0');
    for (std::size_t i = 0; i < body.size(); ++i)
        body[i] = static_cast<char>((i * 31 + i / 257) % 256);
    server.then(answer(httpAnswer(200, body)));
    EXPECT_EQ(fetch(), "");
    EXPECT_TRUE(disk.read("file") == body);
}

TEST_F(Download, theStatusIsNotLookedAt) {
    for (const int status : {201, 300, 304, 400, 401, 403, 404, 407, 418, 500, 503}) {
        SCOPED_TRACE(status);
        const std::string body = status == 304 ? "" : "status " + std::to_string(status);
        server.then(answerAndClose(httpAnswer(status, body)));
        EXPECT_EQ(fetch(), "");
        EXPECT_EQ(disk.read("file"), body);
    }
}

TEST_F(Download, anEmptyAnswerIsAnEmptyFile) {
    server.then(answer(httpAnswer(200, "")));
    EXPECT_EQ(fetch(), "");
    EXPECT_EQ(disk.read("file"), "");
}

TEST_F(Download, anOldFileIsReplaced) {
    disk.write("file", "a longer text than the new one");
    server.then(answer(httpAnswer(200, "new")));
    EXPECT_EQ(fetch(), "");
    EXPECT_EQ(disk.read("file"), "new");
}

TEST_F(Download, redirectsAreFollowed) {
    for (const int status : {301, 302, 303, 307, 308}) {
        SCOPED_TRACE(status);
        RawServer other;
        other.then(answer(httpAnswer(200, "status " + std::to_string(status))));
        server.then(redirectTo(other.url("/there"), status));
        EXPECT_EQ(fetch(), "");
        EXPECT_EQ(disk.read("file"), "status " + std::to_string(status));
        ASSERT_THAT(other.requests(), SizeIs(1));
        EXPECT_EQ(other.requests()[0].requestLine(), "GET /there HTTP/1.1");
    }
}

TEST_F(Download, aRedirectMayBeRelative) {
    server.then(redirectTo("../q.zip?x=1"));
    server.then(answer(httpAnswer(200, "there")));
    EXPECT_EQ(fetch(server.url("/a/b/p.zip")), "");
    EXPECT_EQ(disk.read("file"), "there");
    EXPECT_EQ(server.requests().at(1).requestLine(), "GET /a/q.zip?x=1 HTTP/1.1");
}

TEST_F(Download, aRedirectToAnInsecurePlaceIsNotFollowed) {
    for (const auto* location :
         {"http://downloads.invalid/p", "http://10.1.2.3/p", "file:///etc/passwd", "ftp://127.0.0.1/"}) {
        SCOPED_TRACE(location);
        server.then(redirectTo(location));
        EXPECT_EQ(fetch(), "The download is not offered at a secure address");
        thenNothingIsLeft();
    }
}

TEST_F(Download, aRedirectWithoutATargetIsAnAnswer) {
    server.then(answer(httpAnswer(302, "nowhere")));
    EXPECT_EQ(fetch(), "");
    EXPECT_EQ(disk.read("file"), "nowhere");
}

TEST_F(Download, anEndlessRedirectTextIsNotWaitedFor) {
    server.then(answerEndlessly("HTTP/1.1 302 Found\r\nLocation: /next\r\n\r\n"));
    server.then(answer(httpAnswer(200, "there")));
    EXPECT_EQ(fetch(), "");
    EXPECT_EQ(disk.read("file"), "there");
}

TEST_F(Download, redirectsInACircleEnd) {
    limits.redirects = 3;
    server.thenAlways(redirectTo("/p.zip"));
    EXPECT_EQ(fetch(), "The download was sent on too often");
    EXPECT_THAT(server.requests(), SizeIs(4));
    thenNothingIsLeft();
}

TEST_F(Download, anInsecureAddressIsNotAsked) {
    EXPECT_EQ(fetch("http://downloads.invalid/p.zip"), "The download is not offered at a secure address");
    thenNothingIsLeft();
}

TEST_F(Download, anAnswerAtTheLimitIsTaken) {
    limits.bytes = 1000;
    server.then(answer(httpAnswer(200, std::string(1000, 'x'))));
    EXPECT_EQ(fetch(), "");
    server.then(answer(httpAnswer(200, std::string(1001, 'x'))));
    EXPECT_EQ(fetch(), "The download is too large");
    EXPECT_EQ(disk.read("file"), std::string(1000, 'x')); // the one that was there
}

TEST_F(Download, anEndlessAnswerIsBrokenOff) {
    limits.bytes = 1'000'000;
    server.then(answerEndlessly("HTTP/1.1 200 OK\r\n\r\n"));
    EXPECT_EQ(fetch(), "The download is too large");
    thenNothingIsLeft();
    EXPECT_TRUE(waitUntil([this] { return server.openConnectionCount() == 0; }));
}

TEST_F(Download, theLimitsAreThoseOfAPlugin) {
    EXPECT_EQ(DownloadLimits().bytes, 67'108'864);
    EXPECT_EQ(DownloadLimits().silence, 60s);
}

TEST_F(Download, aSilentServerIsGivenUp) {
    limits.silence = 200ms;
    server.then(stall());
    EXPECT_EQ(fetch(), "The request timed out");
    thenNothingIsLeft();
}

TEST_F(Download, aServerThatFallsSilentIsGivenUpAndItsPartIsRemoved) {
    limits.silence = 200ms;
    server.then(answer("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf"));
    EXPECT_EQ(fetch(), "The request timed out");
    thenNothingIsLeft();
}

TEST_F(Download, aSlowServerIsWaitedFor) {
    limits.silence = 2s;
    server.then(trickle(httpAnswer(200, std::string(60, 'x')), 4, 40ms)); // longer in all than it may be silent
    EXPECT_EQ(fetch(), "");
    EXPECT_EQ(disk.read("file"), std::string(60, 'x'));
}

TEST_F(Download, anAnswerThatBreaksOffIsAFailure) {
    server.then(answerAndClose("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf"));
    EXPECT_NE(fetch(), "");
    thenNothingIsLeft();
}

TEST_F(Download, anAnswerThatIsNotCompressedIsAskedFor) {
    server.then(answer(httpAnswer(200, "")));
    EXPECT_EQ(fetch(), "");
    EXPECT_THAT(server.requests().at(0).header("Accept-Encoding"), ElementsAre("identity"));
}

TEST_F(Download, anAnswerThatCameCompressedAllTheSameIsAFailure) {
    const std::string gzipHead("\x1F\x8B\x08\0\0\0\0\0\0\x03", 10);
    // "hello" by gzip, whole; the same cut off; and a body that is not gzip at all.
    const auto whole = gzipHead + std::string("\xCB\x48\xCD\xC9\xC9\x07\0\x86\xA6\x10\x36\x05\0\0\0", 15);
    for (const auto& body : {whole, whole.substr(0, 14), std::string("not gzip")}) {
        for (const auto* encoding : {"gzip", "deflate", "br", "GZIP"}) {
            SCOPED_TRACE(encoding);
            server.then(answerAndClose(httpAnswer(200, body, {"Content-Encoding: " + std::string(encoding)})));
            EXPECT_EQ(fetch(), "The download came encoded, which was not asked for");
            thenNothingIsLeft();
        }
    }
    server.then(answer(httpAnswer(200, "plain", {"Content-Encoding: identity"})));
    EXPECT_EQ(fetch(), "");
}

// Whether one that was cut is seen depends on the moment at which the connection closes, so none is taken.
TEST_F(Download, anAnswerInPiecesIsAFailureWhereverItIsCut) {
    const std::string head = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
    for (const auto* body : {"", "5", "5\r\n", "5\r\nhel", "5\r\nhello", "5\r\nhello\r\n", "5\r\nhello\r\n6\r\n"}) {
        SCOPED_TRACE(body);
        server.then(answerAndClose(head + body));
        EXPECT_NE(fetch(), "");
        thenNothingIsLeft();
    }
    server.then(answerAndClose(head + "5\r\nhello\r\n0\r\n\r\n"));
    EXPECT_EQ(fetch(), "The server does not say how long the download is");
    thenNothingIsLeft();
}

TEST_F(Download, anAnswerWithoutALengthIsAFailure) {
    server.then(answerAndClose("HTTP/1.1 200 OK\r\n\r\nhello"));
    EXPECT_EQ(fetch(), "The server does not say how long the download is");
    thenNothingIsLeft();
}

TEST_F(Download, anAnswerShorterThanItsLengthIsAFailureWhereverItIsCut) {
    const auto whole = httpAnswer(200, "hello");
    for (std::size_t missing = 1; missing <= 5; ++missing) {
        SCOPED_TRACE(missing);
        server.then(answerAndClose(whole.substr(0, whole.size() - missing)));
        EXPECT_NE(fetch(), "");
        thenNothingIsLeft();
    }
}

TEST_F(Download, aServerThatIsNotThereIsAFailure) {
    std::string url;
    {
        const RawServer gone;
        url = gone.url("/p.zip");
    }
    EXPECT_NE(fetch(url), "");
    thenNothingIsLeft();
}

TEST_F(Download, aFolderThatIsNotThereIsAFailureBeforeAnythingIsAsked) {
    const auto outcome = runToEnd(NetworkDownloader().fetch(server.url(), disk / "missing/file"));
    EXPECT_TRUE(outcome.hasFailed());
    EXPECT_THAT(server.requests(), IsEmpty());
}

TEST_F(Download, aFailureLeavesTheOldFile) {
    disk.write("file", "old");
    server.then(closeUnanswered());
    server.then(closeUnanswered()); // a lost GET may be asked for once more
    EXPECT_NE(fetch(), "");
    EXPECT_EQ(disk.read("file"), "old");
}
