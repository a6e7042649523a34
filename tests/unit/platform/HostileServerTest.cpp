// A server that does everything wrong, one named thing at a time: each request ends in the outcome that its row names,
// and has been sent once.

#include "fakes/CoroutineTest.h"
#include "fakes/HostileRows.h"
#include "fakes/TemporaryFolder.h"
#include "platform/Download.h"
#include "platform/Http.h"

#include <algorithm>
#include <gmock/gmock.h>

using namespace std::chrono_literals;
using namespace zuvo;
using namespace zuvo::tests;

namespace {

constexpr std::size_t answerLimit = 4UL * 1024 * 1024;

HttpAnswer outcomeOf(const HostileRow& row, RawServer& server, const std::string& body) {
    NetworkHttpClient client(answerLimit);
    if (row.actsBeforeBody)
        server.actBeforeBody();
    server.then(row.behaviour);
    HttpRequest request{server.url("/v1"), {{"x-api-key", repeatedKey}}, body, row.timeout()};
    return runToEnd(client.send(std::move(request)));
}

void thenEachRowEndsAsNamed(const std::string& body) {
    const auto rows = hostileRows(answerLimit);
    ASSERT_GE(rows.size(), 40U);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        RawServer server;
        const auto got = outcomeOf(row, server, body);
        EXPECT_EQ(got.failure, row.outcome.failure);
        EXPECT_EQ(got.status, row.outcome.status);
        EXPECT_TRUE(got.body == row.outcome.body) << got.body.substr(0, 200);
        EXPECT_EQ(server.requests().size(), 1U);
        EXPECT_EQ(server.connectionCount(), 1);
    }
}

struct DownloadRow {
    const char* name;
    Behaviour behaviour;
    std::string file; ///< what is in the file; empty if there is none
};

} // namespace

TEST(HostileServer, eachRowHasANameOfItsOwn) {
    std::vector<std::string> names;
    for (const auto& row : hostileRows(answerLimit))
        names.push_back(row.name);
    std::sort(names.begin(), names.end());
    EXPECT_EQ(std::unique(names.begin(), names.end()), names.end());
}

TEST(HostileServer, eachRequestWithAShortBodyEndsAsItsRowSays) {
    thenEachRowEndsAsNamed("a short body");
}

TEST(HostileServer, eachRequestWithALongBodyEndsAsItsRowSays) {
    thenEachRowEndsAsNamed(std::string(3'000'000, 'b'));
}

TEST(HostileServer, eachDownloadIsWholeOrLeavesNoFile) {
    const std::vector<DownloadRow> rows = {
        {"a close unanswered", closeUnanswered(), ""},
        {"a reset unanswered", resetUnanswered(), ""},
        {"no answer ever", stall(), ""},
        {"a close in the headers", answerAndClose("HTTP/1.1 200 OK\r\nContent-Le"), ""},
        {"a close in the body", answerAndClose("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nhalf"), ""},
        {"silence in the body", answer("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nhalf"), ""},
        {"a body beyond the limit", answer(httpAnswer(200, std::string(200'000, 'x'))), ""},
        {"a body without an end", answerEndlessly("HTTP/1.1 200 OK\r\n\r\n"), ""},
        {"another protocol", answerAndClose("SSH-2.0-OpenSSH_9.2\r\n\r\n"), ""},
        {"a redirect to an address that is not secure",
         answer(httpAnswer(302, "", {"Location: http://service.invalid/x.zip"})), ""},
        {"a redirect to a file", answer(httpAnswer(302, "", {"Location: file:///etc/hostname"})), ""},
        {"a redirect to itself", answer(httpAnswer(302, "", {"Location: /plugin.zip"})), ""},
        {"a whole body", answer(httpAnswer(200, "the archive")), "the archive"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const TemporaryFolder disk;
        RawServer server;
        server.thenAlways(row.behaviour);
        NetworkDownloader downloader(DownloadLimits{100'000, 250ms});
        const auto outcome = runToEnd(downloader.fetch(server.url("/plugin.zip"), disk / "file"));
        EXPECT_EQ(outcome.hasFailed(), row.file.empty()) << outcome.failure;
        EXPECT_EQ(std::filesystem::exists(disk / "file"), !row.file.empty());
        EXPECT_EQ(outcome.hasFailed() ? "" : disk.read("file"), row.file);
    }
}
