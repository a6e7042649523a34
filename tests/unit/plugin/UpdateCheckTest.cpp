#include "UpdateFixture.h"

#include "plugin/UpdateError.h"

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

TEST_F(Update, nothingIsKnownAtFirst) {
    EXPECT_EQ(manager->latestVersion(), std::nullopt);
    EXPECT_FALSE(manager->updateAvailable());
    EXPECT_FALSE(manager->isChecking());
    EXPECT_FALSE(manager->isDownloading());
    EXPECT_EQ(manager->downloadProgress(), 0.0);
    EXPECT_EQ(manager->statusMessage(), std::nullopt);
    EXPECT_EQ(manager->errorMessage(), std::nullopt);
    EXPECT_EQ(manager->releaseNotes(), std::nullopt);
    EXPECT_THAT(service->requests, IsEmpty());
}

TEST_F(Update, aCheckAsksTheServiceWithoutAToken) {
    givenVersion(R"({"version":"0.2"})");
    ASSERT_THAT(service->requests, SizeIs(1));
    EXPECT_EQ(service->requests[0].url, "https://service.test/api/v1/version");
    for (const auto& header : service->requests[0].headers)
        EXPECT_NE(header.first, "Authorization");
}

TEST_F(Update, aNewerVersionIsAnUpdate) {
    givenVersion(R"({"version":"0.2","download_url":"https://downloads.test/p.zip","release_notes":"Faster"})");
    EXPECT_EQ(manager->latestVersion(), "0.2");
    EXPECT_TRUE(manager->updateAvailable());
    EXPECT_EQ(manager->releaseNotes(), "Faster");
    EXPECT_EQ(manager->errorMessage(), std::nullopt);
    EXPECT_THAT(statuses, ElementsAre("Checking for updates...", "Update available!"));
    EXPECT_EQ(checkingChanges, 2);
    EXPECT_FALSE(manager->isChecking());
}

TEST_F(Update, theReleaseOfTheBetaIsNoUpdate) {
    givenVersion(R"({"version":"0.1.0"})");
    EXPECT_EQ(manager->latestVersion(), "0.1.0");
    EXPECT_FALSE(manager->updateAvailable());
    EXPECT_THAT(statuses, ElementsAre("Checking for updates...", "-"));
}

TEST_F(Update, aReleaseCandidateOfALaterVersionIsAnUpdate) {
    givenVersion(R"({"version":"1.0.0-rc1"})");
    EXPECT_TRUE(manager->updateAvailable());
}

TEST_F(Update, aLaterCheckTakesBackWhatAnEarlierFound) {
    givenUpdate();
    givenVersion(R"({"version":"0.1.0"})");
    EXPECT_FALSE(manager->updateAvailable());
    EXPECT_EQ(manager->releaseNotes(), std::nullopt);
    downloadAndInstall();
    EXPECT_EQ(manager->errorMessage(), "No download URL available");
}

TEST_F(Update, answersOfTheWrongShapeAreFailures) {
    for (const auto* body : {"", "[]", "{}", "<html>", R"({"version":2})", R"({"version":"0.2","download_url":5})"}) {
        SCOPED_TRACE(body);
        service->thenAnswers(200, body);
        runToEnd(manager->checkForUpdates());
        ASSERT_TRUE(manager->errorMessage());
        EXPECT_THAT(*manager->errorMessage(), StartsWith("Failed to parse response: "));
        thenFailed(*manager->errorMessage());
        EXPECT_EQ(manager->latestVersion(), std::nullopt);
    }
}

TEST_F(Update, aFaultOfTheServiceIsAFailure) {
    service->thenAnswers(500, "out of order");
    runToEnd(manager->checkForUpdates());
    thenFailed("Server error 500: out of order");
}

TEST_F(Update, aServiceThatIsNotThereIsAFailure) {
    service->plan.push_back({0, {}, "Connection refused"});
    runToEnd(manager->checkForUpdates());
    thenFailed("Network error: Connection refused");
}

TEST_F(Update, aFailedCheckLeavesWhatIsKnown) {
    givenUpdate();
    service->thenAnswers(500, "");
    runToEnd(manager->checkForUpdates());
    EXPECT_TRUE(manager->updateAvailable());
    EXPECT_EQ(manager->latestVersion(), "0.2");
}

TEST_F(Update, aNewCheckTakesTheOldErrorAway) {
    service->thenAnswers(500, "");
    runToEnd(manager->checkForUpdates());
    givenVersion(R"({"version":"0.1"})");
    EXPECT_EQ(manager->errorMessage(), std::nullopt);
}

TEST_F(Update, aSecondCheckWhileOneRunsSendsNothing) {
    service->held = std::make_shared<QPromise<void>>();
    service->held->start();
    service->thenAnswers(200, R"({"version":"0.2"})");
    RunningTask<void> first(manager->checkForUpdates());
    EXPECT_TRUE(manager->isChecking());
    runToEnd(manager->checkForUpdates());
    EXPECT_TRUE(manager->isChecking());
    service->held->finish();
    first.result();
    EXPECT_THAT(service->requests, SizeIs(1));
    EXPECT_FALSE(manager->isChecking());
}

TEST_F(Update, aManagerMayGoDuringACheck) {
    service->held = std::make_shared<QPromise<void>>();
    service->held->start();
    service->thenAnswers(200, R"({"version":"0.2"})");
    RunningTask<void> check(manager->checkForUpdates());
    statuses.clear();
    manager.reset();
    service->held->finish();
    check.result();
    EXPECT_THAT(statuses, IsEmpty());
}

TEST(UpdateErrorWords, areThoseForTheUser) {
    EXPECT_EQ(UpdateError::installFailed("x").errorDescription(), "Install failed: x");
    EXPECT_EQ(UpdateError::downloadFailed("x").errorDescription(), "Download failed: x");
}
