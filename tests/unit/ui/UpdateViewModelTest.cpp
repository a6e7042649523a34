#include "ui/UpdateViewModel.h"

#include "AccountPageFixture.h"
#include "fakes/RecordingAdministratorShell.h"
#include "model/Constants.h"

#include <filesystem>

using namespace zuvo;
using namespace zuvo::tests;
using testing::IsEmpty;

namespace {

/// Downloads the test's archive, or fails with words.
class PlannedDownloads final : public Downloader {
public:
    explicit PlannedDownloads(std::shared_ptr<CallCounter> calls) : m_calls(std::move(calls)) {}

    QCoro::Task<DownloadOutcome> fetch(std::string url, std::string path) override {
        urls.push_back(url);
        const auto outcome = planned;
        const auto calls = m_calls;
        co_await calls->turn();
        if (!outcome.hasFailed())
            std::filesystem::copy_file(archive, path);
        co_return outcome;
    }

    std::vector<std::string> urls;
    DownloadOutcome planned;
    std::string archive; ///< its path

private:
    std::shared_ptr<CallCounter> m_calls;
};

class UpdatePage : public AccountPageTest {
protected:
    UpdatePage() {
        UpdateMeans means{client(), downloads, processes, administrator, {}};
        means.temporaryFolder = [this] { return std::optional(disk.makeFolder("private") + "/"); };
        means.pluginDirectory = disk / "plugins/com.tarnwick.zuvo";
        means.updateKey.clear();
        updates = std::make_shared<UpdateManager>(std::move(means));
        plugin = std::make_shared<PluginManager>(administrator, std::nullopt, disk / "plugins/com.tarnwick.zuvo");
        makeArchive();
        page = std::make_unique<UpdateViewModel>(updates, plugin);
    }

    void makeArchive() {
        downloads->archive = disk / "plugin.zip";
        ProcessRequest request;
        request.program = "/usr/bin/python3";
        request.arguments = {"-c",
                             "import sys, zipfile\n"
                             "with zipfile.ZipFile(sys.argv[1], 'w') as z:\n"
                             "    z.writestr('com.tarnwick.zuvo/version.json', '{\"version\":\"9.1\"}')",
                             downloads->archive};
        ASSERT_TRUE(runToEnd(ChildProcessRunner().run(std::move(request))).succeeded);
    }

    void check(const std::string& versionAsJson) {
        services->then(200, versionAsJson);
        check();
    }
    void check() {
        const auto before = services->requests.size();
        page->check();
        ASSERT_TRUE(waitUntil([this, before] { return services->requests.size() > before && !page->isChecking(); }));
    }
    void install() {
        const QSignalSpy begunAndEnded(updates.get(), &UpdateManager::isDownloadingChanged);
        page->install();
        ASSERT_TRUE(waitUntil([&begunAndEnded] { return begunAndEnded.count() == 2; }));
    }

    void givenUpdate() {
        check(R"({"version":"9.1","download_url":"https://downloads.test/p.zip","release_notes":"Faster"})");
    }

    std::shared_ptr<PlannedDownloads> downloads = std::make_shared<PlannedDownloads>(calls);
    std::shared_ptr<ChildProcessRunner> processes = std::make_shared<ChildProcessRunner>();
    std::shared_ptr<RecordingAdministratorShell> administrator = std::make_shared<RecordingAdministratorShell>();
    std::shared_ptr<UpdateManager> updates;
    std::shared_ptr<PluginManager> plugin;
    std::unique_ptr<UpdateViewModel> page;
};

} // namespace

TEST_F(UpdatePage, beforeACheckTheLatestVersionIsNotKnown) {
    EXPECT_EQ(UpdateViewModel::installedVersion().toStdString(), Constants::App::version);
    EXPECT_EQ(page->latestVersion(), QStringLiteral("—"));
    EXPECT_EQ(page->checkText(), QStringLiteral("Check for Updates"));
    EXPECT_FALSE(page->isChecking());
    EXPECT_FALSE(page->updateAvailable());
    EXPECT_FALSE(page->isUpToDate());
    EXPECT_EQ(page->releaseNotes(), QString());
    EXPECT_EQ(page->errorMessage(), QString());
    EXPECT_EQ(page->installText(), QStringLiteral("Download & Install"));
    EXPECT_EQ(page->installedNotice(), QString());
}

TEST_F(UpdatePage, whileItChecksTheVersionIsThreeDots) {
    std::vector<QString> during;
    calls->inside = [&, this](std::size_t) {
        during = {page->latestVersion(), page->checkText()};
        EXPECT_TRUE(page->isChecking());
        EXPECT_FALSE(page->isUpToDate());
    };
    check(R"({"version":"0.1.0-beta"})");
    EXPECT_EQ(during, std::vector({QStringLiteral("..."), QStringLiteral("Checking...")}));
    EXPECT_EQ(page->latestVersion(), QStringLiteral("0.1.0-beta"));
    EXPECT_EQ(page->checkText(), QStringLiteral("Check for Updates"));
    check(R"({"version":"0.1.0-beta"})");
    EXPECT_EQ(during.front(), QStringLiteral("...")); // a second time too, though a version is known
}

TEST_F(UpdatePage, aNewerVersionIsOffered) {
    givenUpdate();
    EXPECT_TRUE(page->updateAvailable());
    EXPECT_FALSE(page->isUpToDate());
    EXPECT_EQ(page->latestVersion(), QStringLiteral("9.1"));
    EXPECT_EQ(page->updateLine(), QStringLiteral("Version 9.1 is ready to install"));
    EXPECT_EQ(page->releaseNotes(), QStringLiteral("Faster"));
    EXPECT_EQ(page->errorMessage(), QString());
}

TEST_F(UpdatePage, withoutANewerVersionItIsUpToDate) {
    check(R"({"version":"0.1.0-beta"})");
    EXPECT_TRUE(page->isUpToDate());
    EXPECT_FALSE(page->updateAvailable());
    EXPECT_EQ(page->releaseNotes(), QString());
}

TEST_F(UpdatePage, aCheckThatFailsIsToldAndIsNotUpToDate) {
    services->thenFails("The host is not there");
    check();
    EXPECT_FALSE(page->isUpToDate());
    EXPECT_EQ(page->latestVersion(), QStringLiteral("—"));
    EXPECT_TRUE(page->errorMessage().contains(QStringLiteral("The host is not there")));
    check(R"({"version":"0.1.0-beta"})");
    EXPECT_TRUE(page->isUpToDate());
    EXPECT_EQ(page->errorMessage(), QString());
    services->then(500, "broken");
    check();
    EXPECT_FALSE(page->isUpToDate()); // though the check before succeeded
    EXPECT_EQ(page->latestVersion(), QStringLiteral("0.1.0-beta"));
}

TEST_F(UpdatePage, aSecondClickWhileItChecksAsksNoSecondTime) {
    services->then(200, R"({"version":"0.1.0-beta"})");
    page->check();
    page->check();
    ASSERT_TRUE(waitUntil([this] { return page->isUpToDate(); }));
    turn();
    EXPECT_EQ(services->requests.size(), 1U);
}

TEST_F(UpdatePage, anUpdateIsInstalledAndSaysWhatToDoNext) {
    givenUpdate();
    QString during;
    calls->inside = [this, &during](std::size_t) { during = page->installText(); };
    page->install();
    page->install(); // a double click
    ASSERT_TRUE(waitUntil([this] { return !page->installedNotice().isEmpty(); }));
    EXPECT_EQ(during, QStringLiteral("Installing..."));
    EXPECT_EQ(page->installText(), QStringLiteral("Download & Install"));
    EXPECT_EQ(downloads->urls.size(), 1U);
    EXPECT_EQ(administrator->sources.size(), 1U);
    EXPECT_EQ(page->installedNotice(), QStringLiteral("Update installed! Restart DaVinci Resolve to apply changes."));
    EXPECT_FALSE(page->updateAvailable());
    EXPECT_EQ(page->errorMessage(), QString());
}

TEST_F(UpdatePage, theNoticeOfAnInstallationGivesWayToALaterCheck) {
    givenUpdate();
    install();
    ASSERT_FALSE(page->installedNotice().isEmpty());
    QString during = QStringLiteral("not seen");
    calls->inside = [this, &during](std::size_t) { during = page->installedNotice(); };
    givenUpdate();
    EXPECT_EQ(during, QString());
    EXPECT_TRUE(page->updateAvailable());
    EXPECT_EQ(page->installedNotice(), QString());
}

TEST_F(UpdatePage, aDownloadThatFailsIsToldAndCanBeTriedAgain) {
    givenUpdate();
    downloads->planned.failure = "The line is cut";
    install();
    EXPECT_TRUE(page->errorMessage().contains(QStringLiteral("The line is cut")));
    EXPECT_EQ(page->installedNotice(), QString());
    EXPECT_TRUE(page->updateAvailable());
    EXPECT_THAT(administrator->sources, IsEmpty());
    downloads->planned.failure.clear();
    install();
    EXPECT_EQ(page->errorMessage(), QString());
    EXPECT_FALSE(page->installedNotice().isEmpty());
}

TEST_F(UpdatePage, aPasswordThatIsNotGivenIsToldAndNothingCountsAsInstalled) {
    givenUpdate();
    administrator->thenFails("User canceled.");
    install();
    EXPECT_TRUE(page->errorMessage().contains(QStringLiteral("User canceled.")));
    EXPECT_EQ(page->installedNotice(), QString());
    EXPECT_TRUE(page->updateAvailable());
}

TEST_F(UpdatePage, anUpdateWithoutAnAddressCannotBeInstalled) {
    check(R"({"version":"9.1"})");
    EXPECT_TRUE(page->updateAvailable());
    page->install();
    ASSERT_TRUE(waitUntil([this] { return !page->errorMessage().isEmpty(); }));
    EXPECT_EQ(page->errorMessage(), QStringLiteral("No download URL available"));
    EXPECT_FALSE(page->isInstalling());
}

TEST_F(UpdatePage, hostileWordsOfTheServiceStayWords) {
    check(R"({"version":"<b>9</b>","release_notes":"<img src=x>\n%1"})");
    EXPECT_EQ(page->latestVersion(), QStringLiteral("<b>9</b>"));
    EXPECT_EQ(page->releaseNotes(), QStringLiteral("<img src=x>\n%1"));
}

TEST_F(UpdatePage, aPageThatIsGoneWhileItChecksIsNotMissed) {
    services->then(200, R"({"version":"9.1"})");
    calls->inside = [this](std::size_t) { page.reset(); };
    page->check();
    EXPECT_TRUE(waitUntil([this] { return updates->updateAvailable(); }));
    EXPECT_EQ(page, nullptr);
}

TEST_F(UpdatePage, aPageThatIsGoneWhileItInstallsLetsTheInstallationEnd) {
    givenUpdate();
    administrator->hold();
    page->install();
    ASSERT_TRUE(waitUntil([this] { return !administrator->sources.empty(); }));
    page.reset();
    administrator->letGo();
    EXPECT_TRUE(waitUntil([this] { return !updates->isDownloading(); }));
    EXPECT_FALSE(updates->updateAvailable());
    // The next showing says what the installation asks for.
    EXPECT_FALSE(UpdateViewModel(updates, plugin).installedNotice().isEmpty());
}

TEST_F(UpdatePage, withoutAPluginItOffersToInstallOne) {
    EXPECT_EQ(page->pluginText(), QStringLiteral("The Resolve plugin is not installed"));
    EXPECT_EQ(page->pluginButtonText(), QStringLiteral("Install Plugin"));
    EXPECT_FALSE(page->showsPlugin());
    page->openPlugin();
    EXPECT_TRUE(page->showsPlugin());
    EXPECT_FALSE(page->plugin()->isInstalled());
    page->closePlugin();
    EXPECT_FALSE(page->showsPlugin());
}

TEST_F(UpdatePage, withAPluginItNamesItsVersion) {
    disk.write("plugins/com.tarnwick.zuvo/version.json", R"({"version":"0.7"})");
    page = std::make_unique<UpdateViewModel>(updates, plugin); // looks again when it is shown
    EXPECT_EQ(page->pluginText(), QStringLiteral("The Resolve plugin is installed: version 0.7"));
    EXPECT_EQ(page->pluginButtonText(), QStringLiteral("Manage Plugin"));
}

TEST_F(UpdatePage, anUpdateThatWasInstalledIsSeen) {
    administrator->runsWithin(disk, processes);
    disk.makeFolder("plugins");
    givenUpdate();
    install();
    EXPECT_EQ(page->errorMessage(), QString());
    EXPECT_EQ(page->pluginText(), QStringLiteral("The Resolve plugin is installed: version 9.1"));
}

TEST_F(UpdatePage, updatesThatAreNotSignedAreSaidToBeSo) {
    EXPECT_EQ(page->unsignedNotice(),
              QStringLiteral("Updates are not signed: this build has no key to check them with."));
    UpdateMeans means{client(), downloads, processes, administrator, {}};
    means.updateKey = "11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHURo=";
    const UpdateViewModel other(std::make_shared<UpdateManager>(std::move(means)), plugin);
    EXPECT_EQ(other.unsignedNotice(), QString());
}
