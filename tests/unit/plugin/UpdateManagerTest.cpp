#include "plugin/UpdateManager.h"

#include "fakes/CoroutineTest.h"
#include "fakes/RecordingAdministratorShell.h"
#include "fakes/TemporaryFolder.h"
#include "plugin/AdministratorScripts.h"
#include "plugin/UpdateError.h"

#include <deque>
#include <filesystem>
#include <gmock/gmock.h>

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

namespace {

namespace fs = std::filesystem;

/// The account service: answers from a queue.
class PlannedService final : public HttpClient {
public:
    QCoro::Task<HttpAnswer> send(HttpRequest request) override {
        requests.push_back(request);
        HttpAnswer answer;
        if (plan.empty()) {
            ADD_FAILURE() << "Nobody planned this request";
        } else {
            answer = plan.front();
            plan.pop_front();
        }
        if (held)
            co_await held->future();
        co_return answer;
    }

    void thenAnswers(int status, std::string body) { plan.push_back({status, std::move(body), {}}); }

    std::deque<HttpAnswer> plan;
    std::vector<HttpRequest> requests;
    std::shared_ptr<QPromise<void>> held;
};

/// Puts an archive of the test's where it is asked to.
class PlannedDownloader final : public Downloader {
public:
    QCoro::Task<DownloadOutcome> fetch(std::string url, std::string path) override {
        urls.push_back(std::move(url));
        return give(outcome, archive, std::move(path), held);
    }

    DownloadOutcome outcome;
    std::string archive; ///< path of the file to give; empty for a file that is no archive
    std::vector<std::string> urls;
    std::shared_ptr<QPromise<void>> held;

private:
    static QCoro::Task<DownloadOutcome> give(DownloadOutcome outcome, std::string archive, std::string path,
                                             std::shared_ptr<QPromise<void>> held) {
        if (held)
            co_await held->future();
        if (!outcome.hasFailed() && !archive.empty())
            fs::copy_file(archive, path);
        if (!outcome.hasFailed() && archive.empty())
            std::ofstream(path) << "404 Not Found";
        co_return outcome;
    }
};

/// The real runner, which keeps what it was asked for.
class RecordingRunner final : public ProcessRunner {
public:
    QCoro::Task<ProcessOutcome> run(ProcessRequest request) override {
        requests.push_back(request);
        return m_real.run(std::move(request));
    }
    void endChildren() override { m_real.endChildren(); }

    std::vector<ProcessRequest> requests;

private:
    ChildProcessRunner m_real;
};

class Update : public testing::Test {
protected:
    Update() {
        disk.makeFolder("private");
        disk.write("plugins/com.tarnwick.zuvo/version.json", R"({"version":"0.1.0-beta"})");
        make();
    }

    void make() {
        AccountAddresses addresses;
        addresses.baseURL = "https://service.test/api/v1";
        UpdateMeans means{APIClient(service, addresses),     downloader, processes, shell, temporaryFolder,
                          disk / "plugins/com.tarnwick.zuvo"};
        manager = std::make_unique<UpdateManager>(std::move(means));
        const auto* source = manager.get();
        QObject::connect(source, &UpdateManager::downloadProgressChanged,
                         [this] { progress.push_back(manager->downloadProgress()); });
        QObject::connect(source, &UpdateManager::statusMessageChanged,
                         [this] { statuses.push_back(manager->statusMessage().value_or("-")); });
        QObject::connect(source, &UpdateManager::isDownloadingChanged, [this] { ++downloadingChanges; });
        QObject::connect(source, &UpdateManager::isCheckingChanged, [this] { ++checkingChanges; });
    }

    void givenVersion(const std::string& body) {
        service->thenAnswers(200, body);
        runToEnd(manager->checkForUpdates());
    }

    void givenUpdate() {
        givenVersion(R"({"version":"0.2","download_url":"https://downloads.test/p.zip","release_notes":"Faster"})");
        statuses.clear();
    }

    /// Makes an archive by Python; `script` works on `z`, a zipfile.ZipFile, and may use `link(name, target)`.
    void givenArchive(const std::string& script) {
        const auto path = disk / "archive.zip";
        const std::string begin = "import sys, zipfile\n"
                                  "z = zipfile.ZipFile(sys.argv[1], 'w')\n"
                                  "def link(name, target):\n"
                                  "    i = zipfile.ZipInfo(name)\n"
                                  "    i.create_system = 3\n"
                                  "    i.external_attr = 0o120777 << 16\n"
                                  "    z.writestr(i, target)\n";
        ProcessRequest request;
        request.program = "/usr/bin/python3";
        request.arguments = {"-c", begin + script + "\nz.close()\n", path};
        request.keepsError = true;
        const auto made = runToEnd(ChildProcessRunner().run(std::move(request)));
        ASSERT_TRUE(made.succeeded) << made.standardError;
        downloader->archive = path;
    }

    void givenGoodArchive() {
        givenArchive("z.writestr('com.tarnwick.zuvo/version.json', '{\"version\":\"0.2\"}')\n"
                     "z.writestr('com.tarnwick.zuvo/lib/a.js', 'a')\n"
                     "link('com.tarnwick.zuvo/b.js', 'lib/a.js')");
    }

    void givenRealCopies() { shell->runsWithin(disk, processes); }

    void downloadAndInstall() {
        progress.clear();
        runToEnd(manager->downloadAndInstall());
    }

    void thenFailed(const std::string& words) const {
        EXPECT_EQ(manager->errorMessage(), words);
        EXPECT_EQ(manager->statusMessage(), std::nullopt);
        EXPECT_FALSE(manager->isDownloading());
        EXPECT_FALSE(manager->isChecking());
    }

    void thenRefused(const std::string& words) const {
        thenFailed("Install failed: " + words);
        EXPECT_THAT(shell->sources, IsEmpty());
        EXPECT_EQ(disk.read("plugins/com.tarnwick.zuvo/version.json"), R"({"version":"0.1.0-beta"})");
    }

    bool exists(const std::string& name) const { return fs::exists(fs::symlink_status(disk / name)); }

    TemporaryFolder disk;
    std::shared_ptr<PlannedService> service = std::make_shared<PlannedService>();
    std::shared_ptr<PlannedDownloader> downloader = std::make_shared<PlannedDownloader>();
    std::shared_ptr<RecordingRunner> processes = std::make_shared<RecordingRunner>();
    std::shared_ptr<RecordingAdministratorShell> shell = std::make_shared<RecordingAdministratorShell>();
    std::function<std::optional<std::string>()> temporaryFolder = [this] { return disk / "private/"; };
    std::vector<double> progress;
    std::vector<std::string> statuses;
    int downloadingChanges = 0;
    int checkingChanges = 0;
    std::unique_ptr<UpdateManager> manager;
};

} // namespace

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

TEST(UpdateErrorWords, areThoseForTheUser) {
    EXPECT_EQ(UpdateError::installFailed("x").errorDescription(), "Install failed: x");
    EXPECT_EQ(UpdateError::downloadFailed("x").errorDescription(), "Download failed: x");
}
