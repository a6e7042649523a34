#include "ui/ContentViewModel.h"

#include "AccountPageFixture.h"
#include "model/Constants.h"
#include "ui/DashboardViewModel.h"
#include "ui/SignInViewModel.h"
#include "ui/UpdateViewModel.h"

#include <QPointer>
#include <limits>

using namespace zuvo;
using namespace zuvo::tests;
using testing::IsEmpty;

namespace {

class NoDownloader final : public Downloader {
public:
    QCoro::Task<DownloadOutcome> fetch(std::string url, std::string /*path*/) override {
        ADD_FAILURE() << "Nobody planned to download " << url;
        co_return DownloadOutcome();
    }
};

class Content : public AccountPageTest {
protected:
    Content() {
        platform = Platform::ofThisMachine();
        platform.environment.home = disk.makeFolder("home");
        platform.environment.realHomeDir = platform.environment.home;
        platform.environment.systemTemporaryFolder = disk.makeFolder("tmp");
        platform.environment.variable = [](const std::string&) -> std::optional<std::string> { return std::nullopt; };
        platform.processes = processes;
        platform.http = services;
        UpdateMeans means{client(), std::make_shared<NoDownloader>(), processes, {}, {}};
        updates = std::make_shared<UpdateManager>(std::move(means));
        newContent();
    }

    void newContent() {
        ShellServices shell;
        shell.authManager = manager;
        shell.updateManager = updates;
        shell.pluginManager = std::make_shared<PluginManager>(nullptr, std::nullopt, disk / "plugins/zuvo");
        shell.desktop = desktop;
        shell.billingUrl = "https://service.test/billing";
        shell.makeMineTools = [this] {
            MineTools parts;
            parts.authManager = manager;
            parts.resolveBridge = ResolveBridge::create(platform, {});
            parts.cloudProcessor = CloudProcessor::create(client(), {platform.newUuid});
            parts.pipeline = LocalPipeline::create(platform);
            parts.clock = platform.clock;
            ++flowsMade;
            return parts;
        };
        content = std::make_unique<ContentViewModel>(std::move(shell));
    }

    void signIn() { givenSignedIn(userAsJson("Ada")); }

    template <class Model>
    [[nodiscard]] Model* page() const {
        return qobject_cast<Model*>(content->page());
    }

    Platform platform;
    std::shared_ptr<FakeProcessRunner> processes = std::make_shared<FakeProcessRunner>(calls);
    std::shared_ptr<UpdateManager> updates;
    int flowsMade = 0;
    std::unique_ptr<ContentViewModel> content;
};

} // namespace

TEST_F(Content, startsWithTheSignInPageAndTheMineChosen) {
    EXPECT_FALSE(content->isSignedIn());
    EXPECT_EQ(content->selectedTab(), 1);
    EXPECT_EQ(content->pageName(), QStringLiteral("SignInView"));
    EXPECT_NE(page<SignInViewModel>(), nullptr);
    EXPECT_EQ(flowsMade, 0);
}

TEST_F(Content, aSignInLeadsToTheMineThoughAccountIsNumberZero) {
    const QSignalSpy pages(content.get(), &ContentViewModel::pageChanged);
    signIn();
    EXPECT_TRUE(content->isSignedIn());
    EXPECT_EQ(content->pageName(), QStringLiteral("MineView"));
    ASSERT_NE(page<MineViewModel>(), nullptr);
    EXPECT_EQ(page<MineViewModel>()->currentStep(), MineStep::setup);
    EXPECT_EQ(pages.count(), 1);
    EXPECT_EQ(flowsMade, 1);
}

TEST_F(Content, whoIsSignedInAlreadySeesTheMineAtOnce) {
    signIn();
    newContent();
    EXPECT_EQ(content->pageName(), QStringLiteral("MineView"));
}

TEST_F(Content, theSidebarStandsInItsOwnOrder) {
    const auto rows = ContentViewModel::sidebar();
    ASSERT_EQ(rows.size(), 3);
    const std::vector<std::tuple<int, const char*, const char*>> expected = {
        {1, "The Mine", "waveform.badge.magnifyingglass"},
        {0, "Account", "person.circle"},
        {2, "Updates", "arrow.triangle.2.circlepath"}};
    for (qsizetype i = 0; i < rows.size(); ++i) {
        const auto row = rows.at(i).toMap();
        const auto& [tab, label, icon] = expected.at(static_cast<std::size_t>(i));
        EXPECT_EQ(row.value(QStringLiteral("tab")).toInt(), tab);
        EXPECT_EQ(row.value(QStringLiteral("label")).toString(), QString::fromUtf8(label));
        EXPECT_EQ(row.value(QStringLiteral("icon")).toString(), QString::fromUtf8(icon));
    }
}

TEST_F(Content, theVersionStandsBehindAV) {
    EXPECT_EQ(ContentViewModel::appVersion().toStdString(), "v" + std::string(Constants::App::version));
}

TEST_F(Content, everyTabShowsItsPage) {
    signIn();
    content->setSelectedTab(0);
    EXPECT_EQ(content->pageName(), QStringLiteral("DashboardView"));
    EXPECT_NE(page<DashboardViewModel>(), nullptr);
    content->setSelectedTab(2);
    EXPECT_EQ(content->pageName(), QStringLiteral("UpdateView"));
    EXPECT_NE(page<UpdateViewModel>(), nullptr);
    content->setSelectedTab(1);
    EXPECT_EQ(content->pageName(), QStringLiteral("MineView"));
    EXPECT_NE(page<MineViewModel>(), nullptr);
}

TEST_F(Content, anyOtherTabShowsNothing) {
    signIn();
    for (const int tab : {3, -1, 4711, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        content->setSelectedTab(tab);
        EXPECT_EQ(content->selectedTab(), tab);
        EXPECT_EQ(content->pageName(), QString());
        EXPECT_EQ(content->page(), nullptr);
        EXPECT_TRUE(content->isSignedIn());
    }
    content->setSelectedTab(0);
    EXPECT_EQ(content->pageName(), QStringLiteral("DashboardView"));
}

TEST_F(Content, signalsTellOnlyChanges) {
    signIn();
    const QSignalSpy tabs(content.get(), &ContentViewModel::selectedTabChanged);
    const QSignalSpy pages(content.get(), &ContentViewModel::pageChanged);
    content->setSelectedTab(1);
    EXPECT_EQ(tabs.count(), 0);
    EXPECT_EQ(pages.count(), 0);
    content->setSelectedTab(7);
    EXPECT_EQ(pages.count(), 1);
    content->setSelectedTab(8); // as empty as before
    EXPECT_EQ(tabs.count(), 2);
    EXPECT_EQ(pages.count(), 1);
}

TEST_F(Content, leavingATabDiscardsItsPage) {
    signIn();
    for (const int tab : {1, 0, 2}) {
        content->setSelectedTab(tab);
        const QPointer<QObject> left = content->page();
        ASSERT_FALSE(left.isNull());
        content->setSelectedTab(tab == 2 ? 0 : 2);
        EXPECT_FALSE(left.isNull()); // what stands on screen may still look at it
        EXPECT_TRUE(waitUntil([&left] { return left.isNull(); })) << tab;
    }
}

TEST_F(Content, comingBackToTheMineStartsANewFlowAtSetup) {
    signIn();
    auto* flow = page<MineViewModel>();
    flow->setSelectedLanguage("gl");
    flow->advanceTo(MineStep::processing);
    const QPointer<LocalPipeline> pipeline = flow->pipeline().get();
    content->setSelectedTab(0);
    EXPECT_TRUE(waitUntil([&pipeline] { return pipeline.isNull(); })); // nothing ran that would hold it
    content->setSelectedTab(1);
    ASSERT_NE(page<MineViewModel>(), nullptr);
    EXPECT_EQ(page<MineViewModel>()->currentStep(), MineStep::setup);
    EXPECT_EQ(page<MineViewModel>()->selectedLanguage(), "auto");
    EXPECT_EQ(flowsMade, 2);
}

TEST_F(Content, choosingTheSameTabKeepsItsPage) {
    signIn();
    auto* flow = page<MineViewModel>();
    flow->advanceTo(MineStep::style);
    content->setSelectedTab(1);
    EXPECT_EQ(content->page(), flow);
    EXPECT_EQ(flow->currentStep(), MineStep::style);
}

TEST_F(Content, signingOutOnAnyTabLeadsToTheSignInPageAtOnce) {
    for (const int tab : {1, 0, 2, 9}) {
        signIn();
        content->setSelectedTab(tab);
        const QPointer<QObject> left = content->page();
        const QSignalSpy pages(content.get(), &ContentViewModel::pageChanged);
        manager->signOut();
        EXPECT_EQ(content->pageName(), QStringLiteral("SignInView")) << tab;
        EXPECT_NE(page<SignInViewModel>(), nullptr);
        EXPECT_FALSE(content->isSignedIn());
        EXPECT_EQ(pages.count(), 1);
        EXPECT_TRUE(waitUntil([&left] { return left.isNull(); }));
        EXPECT_EQ(content->selectedTab(), tab);
    }
}

TEST_F(Content, theAccountPagesOwnButtonMaySignOut) {
    signIn();
    content->setSelectedTab(0);
    page<DashboardViewModel>()->signOut(); // the page goes while its own call is under way
    EXPECT_EQ(content->pageName(), QStringLiteral("SignInView"));
    turn();
    EXPECT_NE(page<SignInViewModel>(), nullptr);
}

TEST_F(Content, aTabThatIsChosenWhileNobodyIsSignedInIsShownLater) {
    auto* signInPage = content->page();
    content->setSelectedTab(2);
    EXPECT_EQ(content->page(), signInPage);
    signIn();
    EXPECT_EQ(content->pageName(), QStringLiteral("UpdateView"));
}

TEST_F(Content, aRefreshOrAnotherSignInLeavesThePage) {
    signIn();
    auto* flow = content->page();
    services->then(200, userAsJson("Bob"));
    runToEnd(manager->signInWithToken("zuvo_bob"));
    services->then(500, "{}");
    runToEnd(manager->refreshUser());
    EXPECT_EQ(content->page(), flow);
}

TEST_F(Content, aRefusalOfTheTokenLeadsToTheSignInPage) {
    signIn();
    services->then(401, "{}");
    runToEnd(manager->refreshUser());
    EXPECT_EQ(content->pageName(), QStringLiteral("SignInView"));
}

TEST_F(Content, pagesThatWaitForTheServiceMayBeLeft) {
    signIn();
    content->setSelectedTab(0);
    services->then(200, userAsJson("Bob"));
    calls->inside = [this](std::size_t) { content->setSelectedTab(1); };
    page<DashboardViewModel>()->refresh();
    EXPECT_TRUE(waitUntil([this] { return manager->userName() == "Bob"; }));
    EXPECT_EQ(content->pageName(), QStringLiteral("MineView"));
}

TEST_F(Content, aMineUnderWayIsNotShownAgainButGoesOnToItsEnd) {
    signIn();
    DroppedFile file;
    file.url = QUrl::fromLocalFile(QString::fromStdString(disk.write("a.wav", "sound")));
    page<MineViewModel>()->setDroppedFiles({file});
    const QPointer<LocalPipeline> pipeline = page<MineViewModel>()->pipeline().get();
    const QPointer<QObject> left = content->page();
    calls->inside = [this, &left](std::size_t) {
        content->setSelectedTab(0);
        content->setSelectedTab(1);
        EXPECT_NE(content->page(), left.data());
        calls->inside = nullptr;
    };
    PipelineStep lastStep = PipelineStep::idle;
    QObject::connect(pipeline.data(), &LocalPipeline::stepChanged, pipeline.data(),
                     [&] { lastStep = pipeline->step(); });
    services->thenFails("nobody there");
    page<MineViewModel>()->styleNext();
    ASSERT_TRUE(waitUntil([&] { return pipeline.isNull(); }));
    EXPECT_TRUE(left.isNull());
    EXPECT_GT(calls->count(), 2U);
    EXPECT_EQ(lastStep, PipelineStep::error); // its end: nobody transcribes
    EXPECT_EQ(services->plannedCount(), 0U);
    EXPECT_EQ(page<MineViewModel>()->currentStep(), MineStep::setup);
    EXPECT_EQ(page<MineViewModel>()->pipeline()->step(), PipelineStep::idle);
}

TEST_F(Content, thePageGoesWithTheContent) {
    signIn();
    const QPointer<QObject> flow = content->page();
    content.reset();
    EXPECT_TRUE(flow.isNull());
    manager->signOut();
}

// A sign-in link that nobody here asked for

TEST_F(Content, aSignInLinkThatWasNotBegunHereIsAskedAbout) {
    signIn();
    const QSignalSpy questions(content.get(), &ContentViewModel::signInQuestionChanged);
    EXPECT_EQ(content->signInQuestion(), QString());
    services->then(200, userAsJson("Eve"));
    manager->handleCallback("zuvo-manager://callback?token=zuvo_eve");
    ASSERT_TRUE(waitUntil([&questions] { return questions.count() == 1; }));
    EXPECT_EQ(content->signInQuestion(),
              QStringLiteral("Sign in as Eve (ada@example.com) instead of Ada (ada@example.com)?"));
    EXPECT_EQ(manager->userName(), "Ada");

    content->declineSignIn();
    EXPECT_EQ(content->signInQuestion(), QString());
    EXPECT_EQ(manager->getToken(), "zuvo_token");
}

TEST_F(Content, aYesSignsInOnlyWhoWasAskedAbout) {
    services->then(200, userAsJson("Eve"));
    manager->handleCallback("zuvo-manager://callback?token=zuvo_eve");
    ASSERT_TRUE(waitUntil([this] { return !content->signInQuestion().isEmpty(); }));
    EXPECT_EQ(content->signInQuestion(), QStringLiteral("Sign in as Eve (ada@example.com)?"));
    content->acceptSignIn(QStringLiteral("Sign in as Bob?"));
    EXPECT_FALSE(manager->isSignedIn());
    content->acceptSignIn(content->signInQuestion());
    EXPECT_TRUE(manager->isSignedIn());
    EXPECT_EQ(manager->getToken(), "zuvo_eve");
    EXPECT_EQ(content->pageName(), QStringLiteral("MineView"));
}

TEST_F(Content, aNameOfAThousandCharactersDoesNotFillTheQuestion) {
    services->then(200, userAsJson(std::string(1'000, 'e')));
    manager->handleCallback("zuvo-manager://callback?token=zuvo_eve");
    ASSERT_TRUE(waitUntil([this] { return !content->signInQuestion().isEmpty(); }));
    EXPECT_EQ(content->signInQuestion(),
              QStringLiteral("Sign in as ") + QString(60, QLatin1Char('e')) + QStringLiteral("… (ada@example.com)?"));
}
