// The application without its window, over the stand-in's real sockets.

#include "ui/ZuvoManagerApp.h"

#include "fakes/CoroutineTest.h"
#include "fakes/KeptDesktop.h"
#include "fakes/RecordingAdministratorShell.h"
#include "fakes/TemporaryFolder.h"
#include "model/Constants.h"
#include "standin/StandIn.h"
#include "ui/DashboardViewModel.h"
#include "ui/SignInViewModel.h"
#include "ui/UpdateViewModel.h"

#include <QPointer>
#include <algorithm>
#include <gmock/gmock.h>
#include <map>

using namespace zuvo;
using namespace zuvo::tests;
using standin::Failure;
using standin::Service;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

namespace {

/// Runs nothing and remembers that its children were ended.
class NoProcesses final : public ProcessRunner {
public:
    QCoro::Task<ProcessOutcome> run(ProcessRequest /*request*/) override {
        ProcessOutcome outcome;
        outcome.launchFailure = "There is no such tool";
        co_return outcome;
    }
    void endChildren() override { ++endings; }

    int endings = 0;
};

class App : public testing::Test {
protected:
    App() {
        EXPECT_TRUE(services.listen());
        services.setAccount({"user-1", "Marta", "marta@example.com", 24, "Studio"});
        variables = {{"ZUVO_SERVICE_URL", services.accountBase().toStdString()}};
    }

    void launch() {
        app.reset();
        AppWorld world;
        world.platform = Platform::ofThisMachine();
        world.platform.environment.home = home;
        world.platform.environment.realHomeDir = home;
        world.platform.environment.systemTemporaryFolder = disk.makeFolder("tmp");
        world.platform.environment.variable = [this](const std::string& name) -> std::optional<std::string> {
            const auto found = variables.find(name);
            return found == variables.end() ? std::nullopt : std::optional(found->second);
        };
        world.platform.processes = processes;
        world.desktop = desktop;
        world.administrator = administrator;
        world.downloader = std::make_shared<NetworkDownloader>();
        world.pluginDirectory = disk / "plugins/com.tarnwick.zuvo";
        app = std::make_unique<ZuvoManagerApp>(std::move(world));
    }

    void givenStoredToken(const std::string& token) const {
        disk.write("home/.zuvo/token.json", R"({"token":")" + token + R"(","name":"Stored"})");
    }

    void launchSignedIn() {
        givenStoredToken("zuvo_stored");
        launch();
        ASSERT_TRUE(waitUntil([this] { return app->content()->isSignedIn(); }));
    }

    template <class Model>
    [[nodiscard]] Model* page() const {
        return qobject_cast<Model*>(app->content()->page());
    }

    [[nodiscard]] std::string pageName() const { return app->content()->pageName().toStdString(); }

    static void turn() { runEventLoop(std::chrono::milliseconds(100)); }

    TemporaryFolder disk;
    std::string home = disk.makeFolder("home");
    std::map<std::string, std::string> variables;
    standin::StandIn services;
    std::shared_ptr<NoProcesses> processes = std::make_shared<NoProcesses>();
    std::shared_ptr<KeptDesktop> desktop = std::make_shared<KeptDesktop>();
    std::shared_ptr<RecordingAdministratorShell> administrator = std::make_shared<RecordingAdministratorShell>();
    std::unique_ptr<ZuvoManagerApp> app;
};

} // namespace

TEST_F(App, atAFirstStartNobodyIsSignedInAndNothingIsAsked) {
    launch();
    turn();
    EXPECT_EQ(pageName(), "SignInView");
    EXPECT_EQ(app->content()->selectedTab(), 1);
    EXPECT_THAT(services.requests(), IsEmpty());
    EXPECT_THAT(administrator->sources, IsEmpty());
}

TEST_F(App, aStoredTokenLeadsToTheMineOnceTheServiceHasAnswered) {
    givenStoredToken("zuvo_stored");
    launch();
    EXPECT_EQ(pageName(), "SignInView"); // not before
    ASSERT_TRUE(waitUntil([this] { return app->content()->isSignedIn(); }));
    EXPECT_EQ(pageName(), "MineView");
    EXPECT_EQ(app->authManager()->userName(), "Marta");
    EXPECT_THAT(services.requests(Service::me), SizeIs(1));
}

TEST_F(App, aStoredTokenThatIsRefusedStaysAtTheSignInPage) {
    givenStoredToken("not one of the service's");
    launch();
    ASSERT_TRUE(waitUntil([this] { return !app->authManager()->getToken(); }));
    EXPECT_EQ(pageName(), "SignInView");
}

TEST_F(App, aSignInLinkSignsIn) {
    launch();
    page<SignInViewModel>()->signInWithBrowser();
    ASSERT_THAT(desktop->urls, SizeIs(1));
    EXPECT_EQ(desktop->urls.front().rfind(services.accountBase().toStdString() + "/", 0), 0U);
    app->handleCallback("zuvo-manager://callback?token=zuvo_link");
    ASSERT_TRUE(waitUntil([this] { return pageName() == "MineView"; }));
    EXPECT_EQ(app->authManager()->getToken(), "zuvo_link");
}

TEST_F(App, anyOtherUrlChangesNothing) {
    launch();
    const std::vector<std::string> urls = {"zuvo-manager://callback",
                                           "zuvo-manager://callback?code=zuvo_a",
                                           "zuvo-manager://callback?token",
                                           "zuvo-manager://other?token=zuvo_a",
                                           "other://callback?token=zuvo_a",
                                           "https://callback/?token=zuvo_a",
                                           "",
                                           "\xff\xfe",
                                           "zuvo-manager:"};
    for (const auto& url : urls)
        app->handleCallback(url);
    turn();
    EXPECT_THAT(services.requests(), IsEmpty());
    EXPECT_EQ(app->authManager()->errorMessage(), std::nullopt);
    EXPECT_EQ(pageName(), "SignInView");
}

TEST_F(App, aTokenThatTheServiceRefusesIsToldAndKeptInTheField) {
    launch();
    auto* signIn = page<SignInViewModel>();
    signIn->toggleTokenField();
    signIn->setManualToken(QStringLiteral("mistyped"));
    signIn->submitToken();
    ASSERT_TRUE(waitUntil([signIn] { return !signIn->errorMessage().isEmpty(); }));
    EXPECT_EQ(page<SignInViewModel>(), signIn);
    EXPECT_EQ(signIn->manualToken(), QStringLiteral("mistyped"));
    EXPECT_EQ(signIn->stage(), QStringLiteral("token"));
    signIn->setManualToken(QStringLiteral("zuvo_right"));
    signIn->submitToken();
    EXPECT_TRUE(waitUntil([this] { return pageName() == "MineView"; }));
}

TEST_F(App, allPagesShareOneAccount) {
    launchSignedIn();
    EXPECT_EQ(page<MineViewModel>()->pipeline()->step(), PipelineStep::idle);
    app->content()->setSelectedTab(0);
    EXPECT_EQ(page<DashboardViewModel>()->name(), QStringLiteral("Marta"));
    EXPECT_EQ(page<DashboardViewModel>()->planBadge(), QStringLiteral("PRO"));
    page<DashboardViewModel>()->openBilling();
    ASSERT_THAT(desktop->urls, SizeIs(1));
    EXPECT_EQ(desktop->urls.front(), services.accountBase().toStdString() + "/billing");
    page<DashboardViewModel>()->signOut();
    EXPECT_EQ(pageName(), "SignInView");
}

TEST_F(App, eachFlowHasItsOwnPipelineAndBridge) {
    launchSignedIn();
    const QPointer<LocalPipeline> pipeline = page<MineViewModel>()->pipeline().get();
    const QPointer<ResolveBridge> bridge = page<MineViewModel>()->resolveBridge().get();
    app->content()->setSelectedTab(2);
    EXPECT_TRUE(waitUntil([&] { return pipeline.isNull() && bridge.isNull(); }));
    app->content()->setSelectedTab(1);
    EXPECT_NE(page<MineViewModel>()->pipeline(), nullptr);
}

TEST_F(App, theUpdatesOutliveTheirPage) {
    launchSignedIn();
    app->content()->setSelectedTab(2);
    page<UpdateViewModel>()->check();
    ASSERT_TRUE(waitUntil([this] { return page<UpdateViewModel>()->updateAvailable(); }));
    EXPECT_EQ(page<UpdateViewModel>()->latestVersion(), QStringLiteral("0.2.0"));
    app->content()->setSelectedTab(0);
    turn();
    app->content()->setSelectedTab(2);
    EXPECT_TRUE(page<UpdateViewModel>()->updateAvailable());
    EXPECT_THAT(services.requests(Service::version), SizeIs(1));
}

TEST_F(App, aRefusedServiceAddressIsToldAtTheSignIn) {
    variables["ZUVO_SERVICE_URL"] = "http://service.example";
    launch();
    page<SignInViewModel>()->signInWithBrowser();
    EXPECT_FALSE(page<SignInViewModel>()->errorMessage().isEmpty());
    EXPECT_THAT(desktop->urls, IsEmpty());
}

TEST_F(App, aServiceThatNeverAnswersLeavesThePagesAlive) {
    launchSignedIn();
    services.fail(Service::me, Failure::stall());
    app->content()->setSelectedTab(0);
    page<DashboardViewModel>()->refresh();
    turn();
    EXPECT_TRUE(page<DashboardViewModel>()->isRefreshing());
    app->content()->setSelectedTab(1);
    app->content()->setSelectedTab(0);
    EXPECT_FALSE(page<DashboardViewModel>()->isRefreshing()); // a new page
    app.reset();                                              // with the request still open
    turn();
}

TEST_F(App, atItsEndItEndsTheChildrenOnce) {
    launchSignedIn();
    page<MineViewModel>()->show();
    app.reset();
    EXPECT_EQ(processes->endings, 1);
    turn();
}

TEST_F(App, theEndWhileASignInWaitsIsQuiet) {
    launch();
    services.fail(Service::me, Failure::late(std::chrono::milliseconds(50)));
    app->handleCallback("zuvo-manager://callback?token=zuvo_link");
    ASSERT_TRUE(waitUntil([this] { return app->authManager()->isLoading(); }));
    app.reset();
    turn();
    EXPECT_FALSE(std::filesystem::exists(home + "/.zuvo/token.json"));
}
