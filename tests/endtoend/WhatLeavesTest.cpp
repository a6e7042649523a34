// README.md says what leaves the machine: every request that is made is one of its table, with the headers named there.

#include "account/AuthManager.h"
#include "endtoend/MineTest.h"
#include "endtoend/ResolveWorlds.h"
#include "fakes/CoroutineTest.h"
#include "fakes/KeptDesktop.h"
#include "platform/Download.h"
#include "platform/Platform.h"
#include "platform/ServiceAddresses.h"

#include <algorithm>
#include <regex>
#include <set>

namespace zuvo::endtoend {
namespace {

using standin::RecordedRequest;
using standin::Service;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSubsetOf;
using testing::Not;
using testing::SizeIs;
using Names = std::set<std::string>;

std::string smallLetters(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? c | 0x20 : c; });
    return text;
}

/// The header names that stand in `back quotes`, in small letters. What is in parentheses says more about a header.
Names headersNamedIn(const std::string& text) {
    static const std::regex parentheses(R"(\([^)]*\))");
    static const std::regex quoted("`([^`]+)`");
    const auto plain = std::regex_replace(text, parentheses, "");
    Names names;
    for (std::sregex_iterator found(plain.begin(), plain.end(), quoted), end; found != end; ++found)
        names.insert(smallLetters((*found)[1]));
    return names;
}

/// The section of README.md, each paragraph or list item in one line.
std::vector<std::string> readmeSection() {
    const auto readme = bytesOf(ZUVO_TEST_FOLDER "/../README.md");
    const std::string heading = "### What leaves your machine\n";
    const auto start = readme.find(heading);
    EXPECT_NE(start, std::string::npos) << "README.md does not say what leaves the machine";
    if (start == std::string::npos)
        return {};
    const auto from = start + heading.size();
    const auto section = readme.substr(from, readme.find("\n#", from) - from);
    return linesOf(std::regex_replace(section, std::regex("\n  "), " "));
}

/// The headers that the table names for a request such as "POST /v1/messages".
Names headersOfRow(const std::string& request) {
    for (const auto& line : readmeSection()) {
        if (line.starts_with("| `" + request + "`"))
            return headersNamedIn(line.substr(line.rfind('|', line.size() - 2)));
    }
    ADD_FAILURE() << "README.md has no row for " << request;
    return {};
}

/// The headers of every request.
Names commonHeaders() {
    for (const auto& line : readmeSection()) {
        if (line.starts_with("- Every request has "))
            return headersNamedIn(line);
    }
    ADD_FAILURE() << "README.md does not name the headers of every request";
    return {};
}

/// The request has the headers of its row and of every request, and no others.
void thenHeadersAreThoseOf(const std::string& row, const RecordedRequest& request) {
    SCOPED_TRACE(row);
    const auto own = headersOfRow(row);
    auto allowed = commonHeaders();
    allowed.insert(own.begin(), own.end());
    Names sent;
    for (const auto& [name, value] : request.headers)
        sent.insert(smallLetters(name));
    EXPECT_THAT(sent, IsSubsetOf(allowed));
    EXPECT_THAT(own, IsSubsetOf(sent));
    for (const auto* always : {"host", "connection", "accept-encoding", "user-agent"})
        EXPECT_TRUE(sent.contains(always)) << always;
}

/// The name of the file in a transcription request.
std::string sentName(const RecordedRequest& request) {
    static const std::regex filename("filename=\"([^\"]*)\"");
    std::smatch found;
    const auto head = request.body.substr(0, request.body.find("audio/wav"));
    return std::regex_search(head, found, filename) ? found[1].str() : "none";
}

class WhatLeavesTest : public MineTest {
protected:
    void SetUp() override {
        file = givenFootage("Secretname.wav", {"-metadata", "title=Confidentialtitle"});
        givenTranscript();
        givenStory();
    }

    [[nodiscard]] std::vector<RecordedRequest> sent() const { return world.services.requests(); }

    std::string file; ///< its path
};

TEST_F(WhatLeavesTest, aMineSendsTheSoundAndThePromptWithTheHeadersOfTheReadme) {
    mine({file, "--language", "es", "--preset", "campfire", "--notes", "Leave the dog out."});
    thenItEndsWith(0);

    std::vector<Service> services;
    for (const auto& request : sent())
        services.push_back(request.service);
    ASSERT_THAT(services, ElementsAre(Service::transcription, Service::messages, Service::transcription));
    thenHeadersAreThoseOf("POST /v1/audio/transcriptions", sent()[0]);
    thenHeadersAreThoseOf("POST /v1/messages", sent()[1]);
    thenHeadersAreThoseOf("POST /v1/audio/transcriptions", sent()[2]);
    EXPECT_EQ(sent()[0].path, "/v1/audio/transcriptions");
    EXPECT_EQ(sent()[1].path, "/v1/messages");

    EXPECT_THAT(sent()[0].body, HasSubstr("name=\"language\"\r\n\r\nes\r\n"));
    EXPECT_THAT(prompt(), HasSubstr("Leave the dog out."));
    EXPECT_THAT(prompt(), HasSubstr("Base style: Campfire"));
    EXPECT_THAT(prompt(), HasSubstr(climbingLines().back().text));
}

TEST_F(WhatLeavesTest, eachServiceIsSentItsOwnKeyAndNotTheOthers) {
    mine({file});
    for (const auto& request : sent()) {
        const bool isTranscription = request.service == Service::transcription;
        const auto whole = request.header("Authorization") + request.header("x-api-key") + request.body;
        EXPECT_EQ(whole.find(openaiKey) != std::string::npos, isTranscription);
        EXPECT_EQ(whole.find(anthropicKey) != std::string::npos, !isTranscription);
    }
}

TEST_F(WhatLeavesTest, namesOfFilesFoldersAndTimelinesStayHere) {
    world.givenResolve(resolveWith("Secrettimeline", {clipOf(file, "00:00:12:00")}));
    mine({"--timeline", "Secrettimeline"});
    thenItEndsWith(0);
    ending = world.zuvo({"audit", "--timeline", "Secrettimeline", "--mine-first"});
    ASSERT_EQ(messagesRequests(), 3U);
    for (const auto& request : sent()) {
        for (const auto& [name, value] : request.headers) {
            EXPECT_THAT(value, Not(HasSubstr("Secret"))) << name;
            EXPECT_NE(smallLetters(name), "cookie");
        }
        EXPECT_EQ(request.path.find('?'), std::string::npos);
        // Not EXPECT_THAT: a difference would print megabytes of sound.
        for (const std::string name : {"Secretname", "Secrettimeline", "media/"})
            EXPECT_EQ(request.body.find(name), std::string::npos) << name;
        EXPECT_EQ(request.body.find(world.folder.path()), std::string::npos);
    }
    const auto section = joined(readmeSection());
    for (const auto& request : world.services.requests(Service::transcription)) {
        EXPECT_THAT(sentName(request), testing::MatchesRegex("(extracted_audio|chunk_000|word_seg_0)\\.wav"));
        EXPECT_THAT(section, HasSubstr("`" + sentName(request) + "`"));
    }
}

TEST_F(WhatLeavesTest, theTagsOfTheFootageGoAlongWithTheSound) {
    mine({file});
    for (const auto& request : world.services.requests(Service::transcription))
        EXPECT_NE(request.body.find("Confidentialtitle"), std::string::npos);
    EXPECT_THAT(joined(readmeSection()), HasSubstr("tags (title, artist, comment, date)"));
}

/// The application's account, without its window.
class WhatLeavesWithTheAccountTest : public testing::Test {
protected:
    WhatLeavesWithTheAccountTest() {
        EXPECT_TRUE(service.listen());
        platform.environment.home = folder.path();
        platform.environment.variable = [this](const std::string& name) -> std::optional<std::string> {
            return name == "ZUVO_SERVICE_URL" ? std::optional(service.accountBase().toStdString()) : std::nullopt;
        };
    }

    [[nodiscard]] APIClient client() const { return {platform.http, accountAddresses(platform.environment)}; }
    [[nodiscard]] std::unique_ptr<AuthManager> started() const {
        return std::make_unique<AuthManager>(client(), desktop, platform.environment.tokenFile());
    }

    tests::TemporaryFolder folder;
    standin::StandIn service;
    Platform platform = Platform::ofThisMachine();
    std::shared_ptr<tests::KeptDesktop> desktop = std::make_shared<tests::KeptDesktop>();
};

TEST_F(WhatLeavesWithTheAccountTest, aStartAsksForTheAccountOnlyIfATokenIsStored) {
    auto manager = started();
    tests::runEventLoop(std::chrono::milliseconds(100));
    EXPECT_THAT(service.requests(), IsEmpty());

    tests::runToEnd(manager->signInWithToken("zuvo_ada"));
    ASSERT_TRUE(manager->isSignedIn());
    manager = started();
    ASSERT_TRUE(tests::waitUntil([&] { return manager->isSignedIn(); }));
    ASSERT_THAT(service.requests(), SizeIs(2));
    for (const auto& request : service.requests()) {
        EXPECT_EQ(request.path, "/api/v1/me");
        EXPECT_THAT(request.body, IsEmpty());
        EXPECT_EQ(request.header("User-Agent"), "Zuvo-Manager/1.0.0");
        thenHeadersAreThoseOf("GET /api/v1/me", request);
    }
}

TEST_F(WhatLeavesWithTheAccountTest, theVersionIsAskedForWithoutAToken) {
    (void)tests::runToEnd(client().getVersion());
    ASSERT_THAT(service.requests(), SizeIs(1));
    EXPECT_EQ(service.requests()[0].path, "/api/v1/version");
    EXPECT_THAT(service.requests()[0].body, IsEmpty());
    thenHeadersAreThoseOf("GET /api/v1/version", service.requests()[0]);
}

TEST_F(WhatLeavesWithTheAccountTest, aDownloadCarriesNothing) {
    NetworkDownloader downloader;
    const auto address = service.accountBase().toStdString() + "/plugin/zuvo-plugin.zip";
    (void)tests::runToEnd(downloader.fetch(address, folder / "archive.zip"));
    ASSERT_THAT(service.requests(), SizeIs(1));
    EXPECT_THAT(service.requests()[0].body, IsEmpty());
    thenHeadersAreThoseOf("GET", service.requests()[0]);
}

TEST_F(WhatLeavesWithTheAccountTest, aSignInOpensTheBrowserWithTheAddressToComeBackTo) {
    const auto manager = started();
    manager->signIn();
    EXPECT_THAT(desktop->urls, ElementsAre(service.accountBase().toStdString() +
                                           "/plugin-auth?callback=zuvo-manager%3A%2F%2Fcallback"));
    EXPECT_THAT(service.requests(), IsEmpty());
}

} // namespace
} // namespace zuvo::endtoend
