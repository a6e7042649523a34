#include "UpdateFixture.h"

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

namespace fs = std::filesystem;

TEST_F(Update, withoutACheckThereIsNoAddress) {
    downloadAndInstall();
    EXPECT_EQ(manager->errorMessage(), "No download URL available");
    EXPECT_EQ(downloadingChanges, 0);
}

TEST_F(Update, anUpdateWithoutAnAddressStopsAtOnce) {
    givenVersion(R"({"version":"0.2"})");
    EXPECT_TRUE(manager->updateAvailable());
    downloadAndInstall();
    EXPECT_EQ(manager->errorMessage(), "No download URL available");
    EXPECT_EQ(manager->statusMessage(), "Update available!"); // untouched
    EXPECT_EQ(downloadingChanges, 0);
    EXPECT_THAT(downloader->urls, IsEmpty());
}

TEST_F(Update, addressesThatAreNotSecureCountAsNone) {
    for (const auto* url : {"", " ", "p.zip", "http://downloads.test/p.zip", "ftp://downloads.test/p.zip",
                            "file:///etc/passwd", "https://", "https://a b/", "javascript:0", "http://10.0.0.1/p"}) {
        SCOPED_TRACE(url);
        givenVersion(R"({"version":"0.2","download_url":")" + std::string(url) + "\"}");
        downloadAndInstall();
        EXPECT_EQ(manager->errorMessage(), "No download URL available");
    }
    EXPECT_THAT(downloader->urls, IsEmpty());
}

TEST_F(Update, anUpdateTakesThePlaceOfTheOldPlugin) {
    givenUpdate();
    givenGoodArchive();
    givenRealCopies();
    disk.write("plugins/com.tarnwick.zuvo/old", "goes");
    disk.write("plugins/other/file", "another's");
    downloadAndInstall();

    EXPECT_EQ(manager->errorMessage(), std::nullopt);
    EXPECT_EQ(manager->statusMessage(), "Update installed! Restart DaVinci Resolve to apply changes.");
    EXPECT_FALSE(manager->updateAvailable());
    EXPECT_FALSE(manager->isDownloading());
    EXPECT_EQ(manager->downloadProgress(), 1.0);
    EXPECT_THAT(downloader->urls, ElementsAre("https://downloads.test/p.zip"));
    EXPECT_EQ(disk.read("plugins/com.tarnwick.zuvo/version.json"), R"({"version":"0.2"})");
    EXPECT_EQ(disk.read("plugins/com.tarnwick.zuvo/b.js"), "a");
    EXPECT_FALSE(exists("plugins/com.tarnwick.zuvo/old"));
    EXPECT_EQ(disk.read("plugins/other/file"), "another's");
    EXPECT_THAT(namesIn("private"), IsEmpty());
    EXPECT_THAT(namesIn("plugins"), ElementsAre("com.tarnwick.zuvo", "other"));
}

TEST_F(Update, progressMovesOnlyThroughItsFourValues) {
    givenUpdate();
    givenGoodArchive();
    downloadAndInstall();
    EXPECT_THAT(progress, ElementsAre(0.5, 0.8, 1.0)); // from 0.0, where it stood
    EXPECT_THAT(statuses, ElementsAre("Downloading update...", "Installing update...",
                                      "Update installed! Restart DaVinci Resolve to apply changes."));
    downloadAndInstall();
    EXPECT_THAT(progress, ElementsAre(0.0, 0.5, 0.8, 1.0));
    EXPECT_EQ(downloadingChanges, 4);
}

TEST_F(Update, unzipAndTheCopyAreAskedForToTheLetter) {
    givenUpdate();
    givenGoodArchive();
    downloadAndInstall();
    ASSERT_THAT(processes->requests, SizeIs(1));
    const auto& arguments = processes->requests[0].arguments;
    ASSERT_THAT(arguments, SizeIs(4));
    const auto work = fs::path(arguments[1]).parent_path().string();
    EXPECT_THAT(work, testing::MatchesRegex((disk / "private/zuvo-update-......")));
    EXPECT_EQ(processes->requests[0].program, "/usr/bin/unzip");
    EXPECT_THAT(arguments, ElementsAre("-o", work + "/plugin-update.zip", "-d", work + "/extracted"));
    EXPECT_TRUE(processes->requests[0].hasNoTerminal); // it could ask for a password there
    ASSERT_THAT(shell->sources, SizeIs(1));
    EXPECT_THAT(shell->sources[0], testing::EndsWith(" copying=1 && rm -rf '" + (disk / "plugins/com.tarnwick.zuvo") +
                                                     "' && cp -R './com.tarnwick.zuvo' '" + (disk / "plugins") +
                                                     "'\" with administrator privileges"));
    EXPECT_THAT(shell->sources[0], HasSubstr("cp -RP '" + work + "/extracted/com.tarnwick.zuvo' ."));
}

TEST_F(Update, eachAttemptWorksInAFolderOfItsOwn) {
    givenUpdate();
    givenGoodArchive();
    downloadAndInstall();
    downloadAndInstall();
    ASSERT_THAT(processes->requests, SizeIs(2));
    EXPECT_NE(processes->requests[0].arguments, processes->requests[1].arguments);
    EXPECT_THAT(namesIn("private"), IsEmpty());
}

TEST_F(Update, nobodyElseCanEnterTheWorkFolder) {
    givenUpdate();
    givenGoodArchive();
    fs::perms rights = fs::perms::unknown;
    shell->meanwhile = [&] { rights = fs::status(disk / ("private/" + namesIn("private").at(0))).permissions(); };
    downloadAndInstall();
    EXPECT_EQ(rights, fs::perms::owner_all);
}

TEST_F(Update, whatAKilledProgramLeftIsRemovedADayLater) {
    disk.write("private/zuvo-update-AAAAAA/extracted/x", "old");
    disk.write("private/zuvo-update-BBBBBB/extracted/x", "maybe another program's");
    disk.write("private/other/x", "not ours");
    for (const auto* name : {"private/zuvo-update-AAAAAA", "private/other"})
        fs::last_write_time(disk / name, fs::file_time_type::clock::now() - std::chrono::hours(25));
    fs::last_write_time(disk / "private/zuvo-update-BBBBBB", fs::file_time_type::clock::now() - std::chrono::hours(23));
    givenUpdate();
    givenGoodArchive();
    downloadAndInstall();
    EXPECT_EQ(manager->errorMessage(), std::nullopt);
    EXPECT_THAT(namesIn("private"), ElementsAre("other", "zuvo-update-BBBBBB"));
}

TEST_F(Update, aLinkInThePlaceOfALeftoverIsNotFollowed) {
    disk.write("precious/file", "kept");
    fs::create_directory_symlink(disk / "precious", disk / "private/zuvo-update-AAAAAA");
    fs::last_write_time(disk / "precious", fs::file_time_type::clock::now() - std::chrono::hours(25));
    givenUpdate();
    givenGoodArchive();
    downloadAndInstall();
    EXPECT_EQ(manager->errorMessage(), std::nullopt);
    EXPECT_EQ(disk.read("precious/file"), "kept");
}

TEST_F(Update, aFailedDownloadShowsThePlatformsWords) {
    givenUpdate();
    downloader->outcome.failure = "Host downloads.test not found";
    downloadAndInstall();
    thenFailed("Host downloads.test not found");
    EXPECT_THAT(progress, IsEmpty());
    EXPECT_TRUE(manager->updateAvailable());
    thenTheOldPluginIsThere();
    EXPECT_THAT(processes->requests, IsEmpty());
}

TEST_F(Update, aCopyThatIsRefusedShowsTheSystemsWords) {
    givenUpdate();
    givenGoodArchive();
    shell->thenFails("User canceled.");
    downloadAndInstall();
    thenFailed("Install failed: User canceled.");
    EXPECT_THAT(progress, ElementsAre(0.5, 0.8));
    thenTheOldPluginIsThere();
}

TEST_F(Update, aCopyThatFailsWithoutWordsIsAnInstallError) {
    givenUpdate();
    givenGoodArchive();
    shell->thenFails("");
    downloadAndInstall();
    thenFailed("Install failed: Install error");
}

TEST_F(Update, aScriptThatCannotBeMadeSaysSo) {
    givenUpdate();
    givenGoodArchive();
    shell->thenCannotCreate();
    downloadAndInstall();
    thenFailed("Install failed: Could not run installer");
}

TEST_F(Update, aTemporaryFolderWithAQuoteIsNeverRun) {
    disk.makeFolder("private/it's");
    temporaryFolder = [this] { return disk / "private/it's/"; };
    make();
    givenUpdate();
    givenGoodArchive();
    downloadAndInstall();
    ASSERT_TRUE(manager->errorMessage());
    EXPECT_THAT(*manager->errorMessage(),
                StartsWith("Install failed: The path holds a quote: " + (disk / "private/it's/zuvo-update-")));
    EXPECT_THAT(shell->sources, IsEmpty());
    EXPECT_EQ(disk.read("plugins/com.tarnwick.zuvo/version.json"), R"({"version":"0.1.0-beta"})");
    EXPECT_THAT(namesIn("private/it's"), IsEmpty());
}

TEST_F(Update, withoutATemporaryFolderNothingIsDownloaded) {
    temporaryFolder = [] { return std::nullopt; };
    make();
    givenUpdate();
    downloadAndInstall();
    thenFailed("The folder for temporary files cannot be made, or is another user's");
    EXPECT_THAT(downloader->urls, IsEmpty());
}

TEST_F(Update, aWorkFolderThatCannotBeMadeIsAFailure) {
    disk.write("private/file", "in the way");
    temporaryFolder = [this] { return disk / "private/file/"; };
    make();
    givenUpdate();
    downloadAndInstall();
    ASSERT_TRUE(manager->errorMessage());
    EXPECT_THAT(*manager->errorMessage(), StartsWith("A folder in " + (disk / "private/file/") + " cannot be made: "));
    thenFailed(*manager->errorMessage());
    EXPECT_THAT(downloader->urls, IsEmpty());
}

TEST_F(Update, withoutUnzipTheOldPluginStays) {
    UpdateMeans means{APIClient(service, {"https://service.test", {}, {}, {}}),
                      downloader,
                      processes,
                      shell,
                      temporaryFolder,
                      disk / "plugins/com.tarnwick.zuvo",
                      disk / "no-unzip",
                      {}};
    manager = std::make_unique<UpdateManager>(std::move(means));
    givenUpdate();
    givenGoodArchive();
    runToEnd(manager->downloadAndInstall());
    ASSERT_TRUE(manager->errorMessage());
    EXPECT_FALSE(manager->errorMessage()->empty());
    thenFailed(*manager->errorMessage());
    EXPECT_THAT(shell->sources, IsEmpty());
}

TEST_F(Update, aSecondDownloadWhileOneRunsDoesNothing) {
    givenUpdate();
    givenGoodArchive();
    downloader->held = std::make_shared<QPromise<void>>();
    downloader->held->start();
    RunningTask<void> first(manager->downloadAndInstall());
    EXPECT_TRUE(manager->isDownloading());
    runToEnd(manager->downloadAndInstall());
    EXPECT_TRUE(manager->isDownloading());
    downloader->held->finish();
    first.result();
    EXPECT_THAT(downloader->urls, SizeIs(1));
    EXPECT_THAT(shell->sources, SizeIs(1));
    EXPECT_FALSE(manager->isDownloading());
}

TEST_F(Update, aCheckDuringADownloadDoesNotChangeWhatIsInstalled) {
    givenUpdate();
    givenGoodArchive();
    downloader->held = std::make_shared<QPromise<void>>();
    downloader->held->start();
    RunningTask<void> installation(manager->downloadAndInstall());
    givenVersion(R"({"version":"0.3","download_url":"https://downloads.test/q.zip"})");
    downloader->held->finish();
    installation.result();
    EXPECT_THAT(downloader->urls, ElementsAre("https://downloads.test/p.zip"));
    EXPECT_EQ(manager->downloadProgress(), 1.0);
}

TEST_F(Update, aManagerThatGoesDuringTheDownloadInstallsNothing) {
    givenUpdate();
    givenGoodArchive();
    downloader->held = std::make_shared<QPromise<void>>();
    downloader->held->start();
    RunningTask<void> installation(manager->downloadAndInstall());
    progress.clear();
    manager.reset();
    downloader->held->finish();
    installation.result();
    EXPECT_THAT(progress, IsEmpty());
    EXPECT_THAT(processes->requests, IsEmpty());
    EXPECT_THAT(shell->sources, IsEmpty());
}

TEST_F(Update, aManagerMayGoWhileThePasswordDialogStands) {
    givenUpdate();
    givenGoodArchive();
    shell->hold();
    RunningTask<void> installation(manager->downloadAndInstall());
    ASSERT_TRUE(waitUntil([this] { return !shell->sources.empty(); }));
    progress.clear();
    manager.reset();
    shell->letGo();
    installation.result();
    EXPECT_THAT(progress, IsEmpty());
}
