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
    EXPECT_FALSE(exists("private/zuvo-update"));
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
    const auto work = disk / "private/zuvo-update";
    EXPECT_EQ(processes->requests[0].program, "/usr/bin/unzip");
    EXPECT_THAT(processes->requests[0].arguments,
                ElementsAre("-o", work + "/plugin-update.zip", "-d", work + "/extracted"));
    EXPECT_TRUE(processes->requests[0].hasNoTerminal); // it could ask for a password there
    EXPECT_THAT(shell->sources, ElementsAre("do shell script \"rm -rf '" + (disk / "plugins/com.tarnwick.zuvo") +
                                            "' && cp -R '" + work + "/extracted/com.tarnwick.zuvo' '" +
                                            (disk / "plugins") + "'\" with administrator privileges"));
}

TEST_F(Update, whatAnEarlierAttemptLeftIsRemovedFirst) {
    disk.write("private/zuvo-update/extracted/com.tarnwick.zuvo/stale", "x");
    givenUpdate();
    givenGoodArchive();
    givenRealCopies();
    downloadAndInstall();
    EXPECT_EQ(manager->errorMessage(), std::nullopt);
    EXPECT_FALSE(exists("plugins/com.tarnwick.zuvo/stale"));
}

TEST_F(Update, aLinkInThePlaceOfTheWorkFolderIsRemovedAndNotFollowed) {
    disk.write("precious/file", "kept");
    fs::create_directory_symlink(disk / "precious", disk / "private/zuvo-update");
    givenUpdate();
    givenGoodArchive();
    downloadAndInstall();
    EXPECT_EQ(manager->errorMessage(), std::nullopt);
    EXPECT_EQ(disk.read("precious/file"), "kept");
    EXPECT_FALSE(exists("precious/plugin-update.zip"));
}

TEST_F(Update, aFailedDownloadShowsThePlatformsWords) {
    givenUpdate();
    downloader->outcome.failure = "Host downloads.test not found";
    downloadAndInstall();
    thenFailed("Host downloads.test not found");
    EXPECT_THAT(progress, IsEmpty());
    EXPECT_TRUE(manager->updateAvailable());
    EXPECT_TRUE(exists("private/zuvo-update")); // until the next attempt
    EXPECT_THAT(processes->requests, IsEmpty());
}

TEST_F(Update, aFileThatIsNoArchiveCostsTheOldPlugin) {
    givenUpdate();
    givenRealCopies();
    downloadAndInstall();
    ASSERT_TRUE(manager->errorMessage());
    EXPECT_THAT(*manager->errorMessage(), StartsWith("Install failed: cp: "));
    thenFailed(*manager->errorMessage());
    EXPECT_FALSE(exists("plugins/com.tarnwick.zuvo"));
    EXPECT_THAT(progress, ElementsAre(0.5, 0.8));
    EXPECT_TRUE(manager->updateAvailable());
    EXPECT_TRUE(exists("private/zuvo-update/plugin-update.zip"));
}

TEST_F(Update, anArchiveWithoutTheTopLevelFolderCostsTheOldPlugin) {
    givenUpdate();
    givenArchive("z.writestr('version.json', '{}')");
    givenRealCopies();
    downloadAndInstall();
    ASSERT_TRUE(manager->errorMessage());
    EXPECT_THAT(*manager->errorMessage(), HasSubstr("com.tarnwick.zuvo"));
    EXPECT_FALSE(exists("plugins/com.tarnwick.zuvo"));
}

TEST_F(Update, pathsThatClimbOutOfTheArchiveStayWithin) {
    givenUpdate();
    givenArchive("z.writestr('../../escaped', 'x')\n"
                 "z.writestr('/zuvo-absolute-escape', 'x')\n"
                 "z.writestr('com.tarnwick.zuvo/../../../escaped', 'x')\n"
                 "z.writestr('com.tarnwick.zuvo/version.json', '{\"version\":\"0.2\"}')");
    givenRealCopies();
    downloadAndInstall();
    EXPECT_FALSE(exists("escaped"));
    EXPECT_FALSE(exists("private/escaped"));
    EXPECT_FALSE(exists("plugins/escaped"));
    EXPECT_FALSE(fs::exists("/zuvo-absolute-escape"));
    EXPECT_EQ(disk.read("plugins/com.tarnwick.zuvo/version.json"), R"({"version":"0.2"})");
}

TEST_F(Update, aLinkThatLeadsOutIsRefusedBeforeAnythingIsRemoved) {
    givenUpdate();
    givenArchive("z.writestr('com.tarnwick.zuvo/version.json', '{}')\n"
                 "link('com.tarnwick.zuvo/passwords', '/etc/passwd')");
    downloadAndInstall();
    thenRefused("The update holds a link that leads out of it: com.tarnwick.zuvo/passwords");
}

TEST_F(Update, aLinkInThePlaceOfTheTopLevelFolderIsRefused) {
    givenUpdate();
    givenArchive("link('com.tarnwick.zuvo', '/etc')");
    downloadAndInstall();
    thenRefused("The update holds a link that leads out of it: com.tarnwick.zuvo");
}

TEST_F(Update, nothingIsWrittenThroughALinkOfTheArchive) {
    disk.makeFolder("precious");
    givenUpdate();
    givenArchive("link('com.tarnwick.zuvo/out', '" + (disk / "precious") +
                 "')\nz.writestr('com.tarnwick.zuvo/out/file', 'x')");
    downloadAndInstall();
    EXPECT_THAT(processes->requests, SizeIs(1));
    EXPECT_FALSE(exists("precious/file"));
}

TEST_F(Update, anArchiveWithAPasswordDoesNotWaitForOne) {
    givenUpdate();
    // A stored file of five bytes whose entry says that it is encrypted.
    givenArchive("z.writestr('com.tarnwick.zuvo/a', b'12345678901234567')\nz.close()\n"
                 "d = bytearray(open(sys.argv[1], 'rb').read())\n"
                 "d[6] |= 1\n"
                 "d[d.find(b'PK\\x01\\x02') + 8] |= 1\n"
                 "open(sys.argv[1], 'wb').write(d)");
    downloadAndInstall();
    EXPECT_THAT(progress, ElementsAre(0.5, 0.8, 1.0)); // as with any archive that lacks a file
    EXPECT_FALSE(manager->isDownloading());
}

TEST_F(Update, aCopyThatIsRefusedShowsTheSystemsWords) {
    givenUpdate();
    givenGoodArchive();
    shell->thenFails("User canceled.");
    downloadAndInstall();
    thenFailed("Install failed: User canceled.");
    EXPECT_THAT(progress, ElementsAre(0.5, 0.8));
    EXPECT_TRUE(exists("private/zuvo-update/extracted/com.tarnwick.zuvo"));
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
    temporaryFolder = [this] { return disk / "private/it's/"; };
    make();
    givenUpdate();
    givenGoodArchive();
    downloadAndInstall();
    thenRefused("The path holds a quote: " + (disk / "private/it's/zuvo-update/extracted"));
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
    EXPECT_THAT(*manager->errorMessage(),
                StartsWith("The folder " + (disk / "private/file/zuvo-update") + " cannot be made: "));
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
                      disk / "no-unzip"};
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
