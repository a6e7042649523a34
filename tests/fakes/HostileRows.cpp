#include "fakes/HostileRows.h"

#include <QByteArray>

namespace zuvo::tests {

namespace {

using namespace std::chrono_literals;

constexpr const char* closed = "Connection closed";
constexpr const char* timedOut = "The request timed out";
constexpr const char* noHttp = "The answer is not HTTP";
constexpr const char* tooLong = "The answer is too long";
constexpr const char* headTooLong = "The head of the answer is too long";
constexpr const char* unclearLength = "The length of the answer is not clear";
constexpr const char* brokenChunks = "The chunks of the answer cannot be read";
constexpr const char* damaged = "The answer could not be unpacked";

HostileOutcome answered(int status, std::string body) {
    return {status, std::move(body), {}};
}

HostileOutcome failed(const char* words) {
    return {0, {}, words};
}

std::string ok(const std::string& headers, const std::string& rest = {}) {
    return "HTTP/1.1 200 OK\r\n" + headers + "\r\n" + rest;
}

std::string chunked(const std::string& chunks) {
    return ok("Transfer-Encoding: chunked\r\n", chunks);
}

std::string times(int count, const std::string& text) {
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

/// gzip's own head and end around what zlib packs.
std::string gzip(const std::string& text) {
    constexpr qsizetype lengthOfQt = 4;
    constexpr qsizetype headOfZlib = 2;
    constexpr qsizetype sumOfZlib = 4;
    auto packed = qCompress(QByteArray::fromStdString(text)).mid(lengthOfQt + headOfZlib);
    packed.chop(sumOfZlib);
    quint32 sum = 0xFFFFFFFFU;
    for (const char c : text) {
        sum ^= static_cast<unsigned char>(c);
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum >> 1U) ^ ((sum & 1U) != 0 ? 0xEDB88320U : 0U);
    }
    sum = ~sum;
    std::string whole("\x1F\x8B\x08\0\0\0\0\0\0\x03", 10);
    whole += packed.toStdString();
    for (const auto number : {sum, static_cast<quint32>(text.size())}) {
        for (unsigned shift = 0; shift < 32; shift += 8)
            whole += static_cast<char>((number >> shift) & 0xFFU);
    }
    return whole;
}

std::string packed(const std::string& body, const std::string& encoding = "gzip") {
    return httpAnswer(200, body, {"Content-Encoding: " + encoding});
}

std::vector<HostileRow> earlyAnswers() {
    return {
        {"401 and a reset while the body is sent", answerAndReset(httpAnswer(401, "wrong key")),
         answered(401, "wrong key"), true},
        {"413 while the body is sent, and open", answer(httpAnswer(413, "too large")), answered(413, "too large"),
         true},
        {"500 without a length and a reset while the body is sent", answerAndReset("HTTP/1.1 500 No\r\n\r\nbroken"),
         answered(500, "broken"), true},
        {"200 while the body is sent", answerAndReset(httpAnswer(200, "early")), answered(200, "early"), true},
        {"half a 401 and a reset while the body is sent",
         answerAndReset("HTTP/1.1 401 No\r\nContent-Length: 10\r\n\r\nhalf"), failed(closed), true},
        {"a reset while the body is sent", resetUnanswered(), failed(closed), true},
        {"a close while the body is sent", closeUnanswered(), failed(closed), true},
        {"a close after the request", closeUnanswered(), failed(closed)},
        {"a reset after the request", answerAndReset(""), failed(closed)},
        {"a reset after a whole answer", answerAndReset(httpAnswer(429, "slow down")), answered(429, "slow down")},
    };
}

std::vector<HostileRow> cutAnswers() {
    return {
        {"a reset in the status line", answerAndReset("HTTP/1.1 2"), failed(closed)},
        {"a close in the headers", answerAndClose("HTTP/1.1 200 OK\r\nContent-Le"), failed(closed)},
        {"a close before the body", answerAndClose(ok("Content-Length: 10\r\n")), failed(closed)},
        {"a close in the body", answerAndClose(ok("Content-Length: 10\r\n", "half")), failed(closed)},
        {"a reset in the body", answerAndReset(ok("Content-Length: 10\r\n", "half")), failed(closed)},
        {"a close in the body of an error", answerAndClose("HTTP/1.1 500 No\r\nContent-Length: 10\r\n\r\nhalf"),
         failed(closed)},
        {"a close in a chunk", answerAndClose(chunked("5\r\nhel")), failed(closed)},
        {"a close between chunks", answerAndClose(chunked("5\r\nhello\r\n")), failed(closed)},
        {"a close after the last chunk's size", answerAndClose(chunked("5\r\nhello\r\n0\r\n")), failed(closed)},
        {"a body that ends with the connection", answerAndClose(ok("", "to the end")), answered(200, "to the end")},
        {"no answer ever", stall(), failed(timedOut), false, true},
        {"silence in the headers", answer("HTTP/1.1 200 OK\r\nContent-Le"), failed(timedOut), false, true},
        {"silence in the body", answer(ok("Content-Length: 10\r\n", "half")), failed(timedOut), false, true},
        {"a head in drips", trickle(ok("X: " + std::string(200, 'x') + "\r\n"), 1, 20ms), failed(timedOut), false,
         true},
        {"a body in drips", trickle(httpAnswer(200, "in drips"), 8, 2ms), answered(200, "in drips")},
    };
}

std::vector<HostileRow> wrongLengths() {
    return {
        {"a length that is too short", answerAndClose(ok("Content-Length: 3\r\n", "abcdef")), answered(200, "abc")},
        {"a length that is no number", answer(ok("Content-Length: ten\r\n", "0123456789")), failed(unclearLength)},
        {"a negative length", answer(ok("Content-Length: -1\r\n", "x")), failed(unclearLength)},
        {"two lengths that differ", answer(ok("Content-Length: 3\r\nContent-Length: 4\r\n", "abcd")),
         failed(unclearLength)},
        {"two lengths that agree", answer(ok("Content-Length: 3\r\nContent-Length: 3, 3\r\n", "abc")),
         answered(200, "abc")},
        {"a length beyond all numbers", answer(ok("Content-Length: 99999999999999999999\r\n")), failed(unclearLength)},
        {"a length of 100 GB", answer(ok("Content-Length: 100000000000\r\n")), failed(tooLong)},
        {"a chunked error", answer("HTTP/1.1 503 No\r\nTransfer-Encoding: chunked\r\n\r\n4\r\nbusy\r\n0\r\n\r\n"),
         answered(503, "busy")},
        {"chunks with notes and trailers", answer(chunked("5;a=b\r\nhello\r\n0\r\nX: y\r\n\r\n")),
         answered(200, "hello")},
        {"a chunk size that is no number", answer(chunked("zz\r\nhello\r\n")), failed(brokenChunks)},
        {"a negative chunk size", answer(chunked("-5\r\nhello\r\n")), failed(brokenChunks)},
        {"a chunk longer than its size", answer(chunked("3\r\nhello\r\n0\r\n\r\n")), failed(brokenChunks)},
        {"a chunk of an exabyte", answer(chunked("FFFFFFFFFFFFFFF\r\nx")), failed(tooLong)},
        {"trailers without an end", answer(chunked("0\r\n" + times(10'000, "X: y\r\n") + times(10'000, "X: y\r\n"))),
         failed(brokenChunks)},
        {"an unknown transfer encoding", answer(ok("Transfer-Encoding: gzip, chunked\r\n", "x")),
         failed("The answer is coded in a way that was not asked for")},
    };
}

std::vector<HostileRow> oddHeads() {
    return {
        {"ten thousand headers", answer("HTTP/1.1 200 OK\r\n" + times(10'000, "X-Flood: yes\r\n")),
         failed(headTooLong)},
        {"a header of a megabyte", answer("HTTP/1.1 200 OK\r\nX: " + std::string(1'000'000, 'x')), failed(headTooLong)},
        {"informational answers without an end", answer(times(5'000, "HTTP/1.1 100 Continue\r\n\r\n")),
         failed(headTooLong)},
        {"an informational answer before an error",
         answer("HTTP/1.1 103 Early Hints\r\nContent-Length: 9\r\n\r\n" + httpAnswer(401, "no")), answered(401, "no")},
        {"header lines that are none", answer(ok("no colon\r\n folded\r\nContent-Length: 2\r\n: \r\n", "ok")),
         answered(200, "ok")},
        {"lines that end in a line feed alone", answer("HTTP/1.1 200 OK\nContent-Length: 2\n\nok"),
         answered(200, "ok")},
        {"a status without words", answer("HTTP/1.1 404\r\nContent-Length: 4\r\n\r\ngone"), answered(404, "gone")},
        {"a status of 999", answer(httpAnswer(999, "odd")), answered(999, "odd")},
        {"a status of 000", answer(httpAnswer(0, "odd")), failed(noHttp)},
        {"a status of letters", answer("HTTP/1.1 abc\r\n\r\n"), failed(noHttp)},
        {"204 with a body", answer("HTTP/1.1 204 None\r\nContent-Length: 4\r\n\r\nbody"), answered(204, "")},
        {"101 to another protocol", answer("HTTP/1.1 101 Switch\r\nUpgrade: x\r\n\r\nwhatever"), answered(101, "")},
        {"HTTP/2 without having been asked", answer("HTTP/2 200 OK\r\n\r\n"), failed(noHttp)},
        {"another protocol", answer("SSH-2.0-OpenSSH_9.2\r\n"), failed(noHttp)},
        {"a page without a head", answer("<html>hello</html>\r\n\r\n"), failed(noHttp)},
        {"5,000 zero bytes and a close", answerAndClose(std::string(5'000, '\0')), failed(closed)},
        {"a redirect", answer(httpAnswer(302, "moved", {"Location: http://127.0.0.1:9/"})), answered(302, "moved")},
        {"a redirect that asks for the body again", answer(httpAnswer(307, "moved", {"Location: /again"})),
         answered(307, "moved")},
        {"a challenge for a password", answer(httpAnswer(401, "who?", {"WWW-Authenticate: Basic realm=\"x\""})),
         answered(401, "who?")},
        {"a proxy's challenge", answer(httpAnswer(407, "who?", {"Proxy-Authenticate: Basic realm=\"x\""})),
         answered(407, "who?")},
    };
}

std::vector<HostileRow> oddBodies(std::size_t answerLimit) {
    const auto plain = std::string("packed words");
    auto broken = gzip(plain);
    broken[14] = static_cast<char>(~broken[14]);
    return {
        {"a body that was packed unasked", answer(packed(gzip(plain))), answered(200, plain)},
        {"a damaged gzip", answer(packed(broken)), failed(damaged)},
        {"a gzip that is cut", answer(packed(gzip(plain).substr(0, 15))), failed(damaged)},
        {"a gzip that is none", answer(packed("not packed at all")), failed(damaged)},
        {"a gzip that grows beyond the limit", answer(packed(gzip(std::string(answerLimit + 1, ' ')))),
         failed(tooLong)},
        {"an unknown packing", answer(packed("x", "br")),
         failed("The answer is packed in a way that was not asked for")},
        {"a body without an end", answerEndlessly("HTTP/1.1 200 OK\r\n\r\n"), failed(tooLong)},
        {"a body beyond the limit", answer(httpAnswer(200, std::string(answerLimit + 1, 'x'))), failed(tooLong)},
        {"an error of half a megabyte", answer(httpAnswer(500, std::string(500'000, 'e'))),
         answered(500, std::string(500'000, 'e'))},
        {"an error that is no text", answer(httpAnswer(500, "\xFF\xFE")), answered(500, "\xFF\xFE")},
        {"an error without a word", answer(httpAnswer(500, "")), answered(500, "")},
        {"an error that repeats the key", answer(httpAnswer(401, std::string("No key: ") + repeatedKey + ".")),
         answered(401, std::string("No key: ") + repeatedKey + ".")},
        {"a page that repeats the key", answer(httpAnswer(200, std::string("<b>") + repeatedKey + "</b>")),
         answered(200, std::string("<b>") + repeatedKey + "</b>")},
        {"a page in the place of JSON", answer(httpAnswer(200, "<html>Log in first</html>")),
         answered(200, "<html>Log in first</html>")},
        {"an empty success", answer(httpAnswer(200, "")), answered(200, "")},
        {"a success of 100,000 brackets", answer(httpAnswer(200, std::string(100'000, '['))),
         answered(200, std::string(100'000, '['))},
    };
}

} // namespace

std::vector<HostileRow> hostileRows(std::size_t answerLimit) {
    std::vector<HostileRow> all;
    for (const auto& some : {earlyAnswers(), cutAnswers(), wrongLengths(), oddHeads(), oddBodies(answerLimit)})
        all.insert(all.end(), some.begin(), some.end());
    return all;
}

} // namespace zuvo::tests
