#pragma once

#include "plugin/UpdateManager.h"

#include "fakes/CoroutineTest.h"
#include "fakes/RecordingAdministratorShell.h"
#include "fakes/TemporaryFolder.h"

#include <algorithm>
#include <deque>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>

namespace zuvo::tests {

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
        urls.push_back(url);
        if (url.ends_with(".sig"))
            return give(signatureOutcome, signature, std::move(path), held);
        return give(outcome, archive, std::move(path), held);
    }

    DownloadOutcome outcome;
    std::string archive; ///< path of the file to give; empty for a file that is no archive
    DownloadOutcome signatureOutcome;
    std::string signature; ///< the same for an address that ends in ".sig"
    std::vector<std::string> urls;
    std::shared_ptr<QPromise<void>> held;

private:
    static QCoro::Task<DownloadOutcome> give(DownloadOutcome outcome, std::string archive, std::string path,
                                             std::shared_ptr<QPromise<void>> held) {
        if (held)
            co_await held->future();
        if (!outcome.hasFailed() && !archive.empty())
            std::filesystem::copy_file(archive, path);
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

/// A manager over planned services, real unpacking and a recorded administrator's shell, with an old plugin in place.
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
        means.updateKey = updateKey;
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

    /// Makes an archive by Python; `script` works on `z`, a zipfile.ZipFile, and may use `put(name, data, mode)`,
    /// `link(name, target)`, `version()`, and `patch(change)` on the bytes of the finished archive.
    void givenArchive(const std::string& script) {
        const auto path = disk / "archive.zip";
        const std::string begin = "import sys, zipfile\n"
                                  "z = zipfile.ZipFile(sys.argv[1], 'w')\n"
                                  "top = 'com.tarnwick.zuvo/'\n"
                                  "def put(name, data='x', mode=0o100644, method=zipfile.ZIP_DEFLATED):\n"
                                  "    i = zipfile.ZipInfo(name)\n"
                                  "    i.create_system = 3\n"
                                  "    i.external_attr = mode << 16\n"
                                  "    i.compress_type = method\n"
                                  "    z.writestr(i, data)\n"
                                  "def link(name, target):\n"
                                  "    put(name, target, 0o120777)\n"
                                  "def version():\n"
                                  "    put(top + 'version.json', '{\"version\":\"0.2\"}')\n"
                                  "def patch(change):\n"
                                  "    z.close()\n"
                                  "    d = bytearray(open(sys.argv[1], 'rb').read())\n"
                                  "    open(sys.argv[1], 'wb').write(change(d) or d)\n";
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
        EXPECT_THAT(shell->sources, testing::IsEmpty());
        thenTheOldPluginIsThere();
    }

    /// The old plugin is whole, and nothing is left beside it or in the temporary folder.
    void thenTheOldPluginIsThere() const {
        EXPECT_EQ(disk.read("plugins/com.tarnwick.zuvo/version.json"), R"({"version":"0.1.0-beta"})");
        EXPECT_THAT(namesIn("plugins/com.tarnwick.zuvo"), testing::ElementsAre("version.json"));
        EXPECT_THAT(namesIn("plugins"), testing::ElementsAre("com.tarnwick.zuvo"));
        EXPECT_THAT(namesIn("private"), testing::IsEmpty());
    }

    [[nodiscard]] std::vector<std::string> namesIn(const std::string& folder) const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(disk / folder))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    /// Where the running attempt has unpacked the archive.
    [[nodiscard]] std::string unpacked(const std::string& name) const {
        return "private/" + namesIn("private").at(0) + "/extracted/com.tarnwick.zuvo/" + name;
    }

    bool exists(const std::string& name) const {
        return std::filesystem::exists(std::filesystem::symlink_status(disk / name));
    }

    TemporaryFolder disk;
    std::shared_ptr<PlannedService> service = std::make_shared<PlannedService>();
    std::shared_ptr<PlannedDownloader> downloader = std::make_shared<PlannedDownloader>();
    std::shared_ptr<RecordingRunner> processes = std::make_shared<RecordingRunner>();
    std::shared_ptr<RecordingAdministratorShell> shell = std::make_shared<RecordingAdministratorShell>();
    std::function<std::optional<std::string>()> temporaryFolder = [this] { return disk / "private/"; };
    std::string updateKey;
    std::vector<double> progress;
    std::vector<std::string> statuses;
    int downloadingChanges = 0;
    int checkingChanges = 0;
    std::unique_ptr<UpdateManager> manager;
};

} // namespace zuvo::tests
