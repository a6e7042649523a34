// The account as the application has it, against the stand-in over real sockets.

#include "account/AuthManager.h"
#include "account/CloudProcessor.h"
#include "base/Files.h"
#include "endtoend/Footage.h"
#include "endtoend/World.h"
#include "fakes/CoroutineTest.h"
#include "fakes/KeptDesktop.h"
#include "fakes/SignInPage.h"
#include "fakes/TemporaryFolder.h"
#include "model/FileLimits.h"
#include "platform/Platform.h"
#include "platform/ServiceAddresses.h"
#include "standin/StandIn.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <vector>

using namespace zuvo;
using namespace zuvo::standin;
using testing::ElementsAre;
using testing::SizeIs;
using testing::StartsWith;
using tests::runToEnd;
using tests::waitUntil;

namespace {

QCoro::Task<void> noPause(std::chrono::milliseconds /*duration*/) {
    co_return;
}

class AccountTest : public testing::Test {
protected:
    AccountTest() {
        EXPECT_TRUE(service.listen());
        service.setAccount({"u1", "Ada", "ada@example.com", 42, "Studio"});
        platform.environment.home = folder.path();
        platform.environment.variable = [this](const std::string& name) -> std::optional<std::string> {
            return name == "ZUVO_SERVICE_URL" ? std::optional(service.accountBase().toStdString()) : std::nullopt;
        };
        start();
    }

    /// The application is started, or started again.
    void start() { manager = std::make_unique<AuthManager>(client(), desktop, platform.environment.tokenFile()); }

    [[nodiscard]] APIClient client() const { return {platform.http, accountAddresses(platform.environment)}; }

    void givenSignedIn() {
        runToEnd(manager->signInWithToken("zuvo_ada"));
        ASSERT_TRUE(manager->isSignedIn()) << manager->errorMessage().value_or("");
        ASSERT_TRUE(std::filesystem::exists(tokenFile()));
    }

    [[nodiscard]] std::string tokenFile() const { return folder / ".zuvo/token.json"; }

    tests::TemporaryFolder folder;
    StandIn service;
    Platform platform = Platform::ofThisMachine();
    std::shared_ptr<tests::KeptDesktop> desktop = std::make_shared<tests::KeptDesktop>();
    std::unique_ptr<AuthManager> manager;
};

} // namespace

TEST_F(AccountTest, theLinkOfTheSignInPageSignsInAndOutlivesTheProgram) {
    manager->signIn();
    ASSERT_THAT(desktop->urls, SizeIs(1));
    const auto link = tests::linkOfSignInPage(desktop->urls.front());
    ASSERT_THAT(link, StartsWith("zuvo-manager://callback?token=zuvo_"));
    const auto token = link.substr(std::string("zuvo-manager://callback?token=").size());

    manager->handleCallback(link);
    ASSERT_TRUE(waitUntil([this] { return manager->isSignedIn(); })) << manager->errorMessage().value_or("");
    EXPECT_EQ(manager->userName(), "Ada");
    EXPECT_EQ(manager->userEmail(), "ada@example.com");
    EXPECT_EQ(manager->credits(), 42);
    EXPECT_EQ(manager->plan(), "Studio");
    EXPECT_EQ(manager->getToken(), token);
    EXPECT_EQ(folder.read(".zuvo/token.json"),
              R"({"token":")" + token + R"(","email":"ada@example.com","name":"Ada"})");

    start();
    EXPECT_FALSE(manager->isSignedIn());
    EXPECT_EQ(manager->userName(), "Ada");
    ASSERT_TRUE(waitUntil([this] { return manager->isSignedIn(); }));
    EXPECT_EQ(service.requests(Service::me).back().header("Authorization"), "Bearer " + token);
}

TEST_F(AccountTest, aTokenThatTheServiceDoesNotKnowIsRefusedInItsWords) {
    runToEnd(manager->signInWithToken("made-up"));
    EXPECT_FALSE(manager->isSignedIn());
    EXPECT_EQ(manager->errorMessage(), R"(Server error 401: {"error":"Invalid token."})");
    EXPECT_FALSE(std::filesystem::exists(tokenFile()));
}

TEST_F(AccountTest, aRefreshShowsTheCreditsThatAreLeft) {
    givenSignedIn();
    service.setAccount({"u1", "Ada", "ada@example.com", 41, "Free"});
    runToEnd(manager->refreshUser());
    EXPECT_TRUE(manager->isSignedIn());
    EXPECT_EQ(manager->credits(), 41);
    EXPECT_EQ(manager->plan(), "Free");
}

TEST_F(AccountTest, aTokenThatIsNoLongerGoodSignsOutAndDeletesTheFile) {
    givenSignedIn();
    service.fail(Service::me, Failure::unauthorized());
    runToEnd(manager->refreshUser());
    EXPECT_FALSE(manager->isSignedIn());
    EXPECT_EQ(manager->getToken(), std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(tokenFile()));
}

TEST_F(AccountTest, aServiceInTroubleSignsNobodyOut) {
    givenSignedIn();
    for (const auto& failure : {Failure::status(500), Failure::drop(), Failure::notJson(), Failure::wrongShape(),
                                Failure::truncatedJson(), Failure::cut(), Failure::redirect("/api/v1/version")}) {
        service.fail(Service::me, failure, Occasion::next(1));
        runToEnd(manager->refreshUser());
        EXPECT_TRUE(manager->isSignedIn());
        EXPECT_EQ(manager->credits(), 42);
    }
    EXPECT_EQ(service.requests(Service::me).size(), 1U + 7U);
    EXPECT_TRUE(service.requests(Service::version).empty());
    EXPECT_TRUE(std::filesystem::exists(tokenFile()));
}

TEST_F(AccountTest, aSignOutIsForgottenByTheNextStartToo) {
    givenSignedIn();
    manager->signOut();
    EXPECT_FALSE(manager->isSignedIn());
    EXPECT_FALSE(std::filesystem::exists(tokenFile()));
    start();
    EXPECT_EQ(manager->getToken(), std::nullopt);
    EXPECT_EQ(manager->userName(), "");
}

TEST_F(AccountTest, theNewestVersionIsToldWithoutAToken) {
    service.setVersion({"0.3.0", "https://a.example/zuvo.zip", std::nullopt});
    const auto version = runToEnd(client().getVersion());
    EXPECT_EQ(version.version, "0.3.0");
    EXPECT_EQ(version.downloadURL, "https://a.example/zuvo.zip");
    EXPECT_EQ(version.releaseNotes, std::nullopt);
    EXPECT_EQ(service.requests(Service::version).front().header("Authorization"), "");
}

TEST_F(AccountTest, aSoundThatIsUploadedComesBackAsAStory) {
    const auto sound = folder / "interview.wav";
    endtoend::ffmpeg({"-i", endtoend::samplePaths().front(), "-ac", "1", "-ar", "16000", sound});
    const auto length = endtoend::measured(sound);

    const auto processor = CloudProcessor::create(client(), {platform.newUuid, noPause});
    std::vector<std::string> shown;
    QObject::connect(processor.get(), &CloudProcessor::currentStepChanged, processor.get(),
                     [&] { shown.emplace_back(rawValue(processor->currentStep())); });
    const auto story = runToEnd(processor->processAudio(sound, "zuvo_ada", MiningMode::fullMine));

    EXPECT_THAT(shown, ElementsAre("Uploading to cloud...", "Transcribing...", "Analyzing story structure...",
                                   "Translating...", "Complete"));
    EXPECT_EQ(processor->progress(), 1.0);
    ASSERT_FALSE(story.segments.empty());
    for (const auto& segment : story.segments) {
        EXPECT_GE(segment.startTime, 0.0);
        EXPECT_LT(segment.startTime, segment.endTime);
        EXPECT_LE(segment.endTime, length);
        EXPECT_FALSE(segment.transcript.empty());
    }
    ASSERT_TRUE(processor->results().has_value());
    EXPECT_EQ(processor->results()->segments.size(), story.segments.size());

    ASSERT_EQ(service.requests(Service::upload).size(), 1U);
    const auto bytes = readFile(sound, FileLimits::sound);
    ASSERT_TRUE(bytes.has_value());
    EXPECT_NE(service.requests(Service::upload).front().body.find(*bytes), std::string::npos);
    EXPECT_EQ(service.requests(Service::process).size(), 1U);
    EXPECT_EQ(service.requests(Service::jobs).size(), 4U);
}

TEST_F(AccountTest, aJobOfSomethingThatIsNoSoundFailsInTheServicesWay) {
    const auto notes = folder.write("notes.txt", "no sound");
    const auto processor = CloudProcessor::create(client(), {platform.newUuid, noPause});
    try {
        (void)runToEnd(processor->processAudio(notes, "zuvo_ada", MiningMode::fullMine));
        FAIL() << "it should have failed";
    } catch (const CloudProcessorError& error) {
        EXPECT_EQ(error.errorDescription(), "Processing failed: Server reported error");
    }
}
