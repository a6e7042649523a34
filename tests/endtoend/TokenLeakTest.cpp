// A marked account token through every way in which the account's, the cloud's, the update's and the plugin's
// operations end: the token file and the service have it, and nothing else does.

#include "account/AuthManager.h"
#include "account/CloudProcessor.h"
#include "endtoend/InProcess.h"
#include "endtoend/Secrets.h"
#include "fakes/CoroutineTest.h"
#include "fakes/KeptDesktop.h"
#include "fakes/RawServer.h"
#include "fakes/RecordingAdministratorShell.h"
#include "platform/ServiceAddresses.h"
#include "plugin/PluginManager.h"
#include "plugin/UpdateManager.h"
#include "standin/StandIn.h"

#include <filesystem>
#include <gmock/gmock.h>

namespace zuvo::endtoend {
namespace {

using standin::Failure;
using standin::Service;
using testing::IsEmpty;
using testing::Not;
using tests::runToEnd;
using namespace std::chrono_literals;

const std::string markedToken = std::string("zuvo_") + secretPart + "-token";

std::string& qtMessages() {
    static std::string lines;
    return lines;
}

void keepQtMessage(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& line) {
    qtMessages() += line.toStdString() + "\n";
}

QCoro::Task<void> noPause(std::chrono::milliseconds /*duration*/) {
    co_return;
}

class TokenLeakTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(service.listen());
        disk.makeFolder("home");
        disk.makeFolder("temporary");
        disk.makeFolder("plugins");
        disk.write("resources/plugin/manifest.json", "{}");
        shell->runsWithin(disk, processes);
        environment.home = disk / "home";
        environment.systemTemporaryFolder = disk / "temporary";
        environment.variable = [this](const std::string& name) -> std::optional<std::string> {
            return name == "ZUVO_SERVICE_URL" ? std::optional(address) : std::nullopt;
        };
        address = service.accountBase().toStdString();
        qtMessages().clear();
        m_formerHandler = qInstallMessageHandler(keepQtMessage);
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
    }

    void TearDown() override {
        said += testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr() + qtMessages();
        qInstallMessageHandler(m_formerHandler);
        EXPECT_FALSE(holdsSecret(said)) << said;
        for (const auto& url : desktop->urls)
            EXPECT_FALSE(holdsSecret(url)) << url;
        for (const auto& call : processes->calls)
            EXPECT_FALSE(holdsSecret(call.tool + "\n" + joined(call.arguments)));
        EXPECT_FALSE(holdsSecret(joined(shell->sources))) << "told to the administrator's shell";
        EXPECT_THAT(secretsBelow(disk.path(), {environment.tokenFile()}), IsEmpty());
        EXPECT_EQ(elsewhere.receivedBytes(), 0U) << "a redirect was followed";
    }

    [[nodiscard]] APIClient client(std::chrono::milliseconds timeout = 15s) const {
        return {std::make_shared<NetworkHttpClient>(), accountAddresses(environment), timeout};
    }

    [[nodiscard]] std::unique_ptr<AuthManager> manager(std::chrono::milliseconds timeout = 15s) const {
        return std::make_unique<AuthManager>(client(timeout), desktop, environment.tokenFile());
    }

    void signInAndRefresh(AuthManager& account) {
        runToEnd(account.signInWithToken(markedToken));
        hear(account);
        runToEnd(account.refreshUser());
        hear(account);
        account.handleCallback("zuvo-manager://callback?token=" + markedToken);
        tests::runEventLoop(20ms);
        hear(account);
    }

    void hear(const AuthManager& account) {
        said += account.userName() + "|" + account.userEmail() + "|" + account.plan() + "|" +
                account.errorMessage().value_or("") + "\n";
    }

    void givenSignedIn() {
        const auto account = manager();
        runToEnd(account->signInWithToken(markedToken));
        ASSERT_TRUE(account->isSignedIn());
        ASSERT_TRUE(exists(environment.tokenFile()));
    }

    void process(const std::string& token) {
        const auto processor = CloudProcessor::create(client(), {[] { return std::string("B"); }, noPause});
        const auto audio = disk.write("home/a.wav", "RIFF");
        try {
            (void)runToEnd(processor->processAudio(audio, token, MiningMode::fullMine));
        } catch (const CloudProcessorError& error) {
            said += error.errorDescription() + "\n";
        }
        said += processor->errorMessage().value_or("") + "\n";
    }

    void checkAndUpdate() {
        UpdateManager update(UpdateMeans{client(), std::make_shared<NetworkDownloader>(), processes, shell,
                                         [this] { return environment.temporaryFolder(); },
                                         disk / "plugins/com.tarnwick.zuvo"});
        runToEnd(update.checkForUpdates());
        hear(update);
        runToEnd(update.downloadAndInstall());
        hear(update);
    }

    template <class Manager>
    void hear(const Manager& plugin) {
        said += plugin.statusMessage().value_or("") + "|" + plugin.errorMessage().value_or("") + "\n";
    }

    /// All ways in which a request of the service can end badly.
    [[nodiscard]] std::vector<Failure> failures() const {
        return {Failure::unauthorized(),
                Failure::status(429, "slow down"),
                Failure::status(500, "\xFF\xFE"),
                Failure::redirect(elsewhere.url()),
                Failure::notJson(),
                Failure::wrongShape(),
                Failure::truncatedJson(),
                Failure::drop(),
                Failure::cut()};
    }

    tests::TemporaryFolder disk;
    standin::StandIn service;
    tests::RawServer elsewhere;
    std::string address;
    Environment environment;
    std::shared_ptr<tests::KeptDesktop> desktop = std::make_shared<tests::KeptDesktop>();
    std::shared_ptr<RecordingProcessRunner> processes = std::make_shared<RecordingProcessRunner>();
    std::shared_ptr<tests::RecordingAdministratorShell> shell = std::make_shared<tests::RecordingAdministratorShell>();
    std::string said;

private:
    QtMessageHandler m_formerHandler = nullptr;
};

TEST_F(TokenLeakTest, ofASignInThatFailsInAnyWay) {
    for (const auto& failure : failures()) {
        SCOPED_TRACE(static_cast<int>(failure.kind));
        service.fail(Service::me, failure);
        const auto account = manager();
        signInAndRefresh(*account);
        EXPECT_FALSE(exists(environment.tokenFile()));
    }
}

TEST_F(TokenLeakTest, ofARefreshThatFailsInAnyWay) {
    for (const auto& failure : failures()) {
        SCOPED_TRACE(static_cast<int>(failure.kind));
        service.failNothing();
        givenSignedIn();
        service.fail(Service::me, failure);
        const auto account = manager(); // reads the file
        ASSERT_TRUE(account->getToken());
        runToEnd(account->refreshUser());
        hear(*account);
    }
}

TEST_F(TokenLeakTest, ofASignInThatGoesWellAndIsForgotten) {
    givenSignedIn();
    const auto asked = service.requests(Service::me);
    ASSERT_FALSE(asked.empty());
    EXPECT_EQ(asked.front().header("Authorization"), "Bearer " + markedToken);
    const auto account = manager();
    account->signIn();
    EXPECT_THAT(desktop->urls, Not(IsEmpty()));
    account->signOut();
    EXPECT_FALSE(exists(environment.tokenFile()));
    EXPECT_THAT(secretsBelow(disk.path()), IsEmpty());
}

TEST_F(TokenLeakTest, ofAServiceThatIsGoneSilentOrRefused) {
    service.fail(Service::me, Failure::stall());
    signInAndRefresh(*manager(200ms));
    address = tests::RawServer().url();
    signInAndRefresh(*manager());
    for (const char* refused : {"http://service.example", "no address"}) {
        address = refused;
        signInAndRefresh(*manager());
    }
}

TEST_F(TokenLeakTest, ofATokenFileThatCannotBeWritten) {
    disk.write("home/.zuvo", "in the way");
    signInAndRefresh(*manager());
}

TEST_F(TokenLeakTest, ofACloudJobThatFailsInAnyWay) {
    for (const auto step : {Service::upload, Service::process, Service::jobs}) {
        for (const auto& failure : failures()) {
            SCOPED_TRACE(static_cast<int>(failure.kind));
            service.failNothing();
            service.fail(step, failure);
            process(markedToken);
        }
    }
    service.failNothing();
    process(markedToken + "\r\nX: y");
    process(markedToken);
}

TEST_F(TokenLeakTest, ofUpdatesThatFailInAnyWay) {
    givenSignedIn();
    for (const auto step : {Service::version, Service::archive}) {
        for (const auto& failure : failures()) {
            if (step == Service::archive && failure.kind == standin::FailureKind::redirect)
                continue; // the one request that follows a redirect; the next test looks at it
            SCOPED_TRACE(static_cast<int>(failure.kind));
            service.failNothing();
            service.fail(step, failure);
            checkAndUpdate();
        }
    }
    service.failNothing();
    shell->thenFails("no password");
    checkAndUpdate();
    shell->thenCannotCreate();
    checkAndUpdate();
    checkAndUpdate();
    for (const auto step : {Service::version, Service::archive}) {
        for (const auto& request : service.requests(step))
            EXPECT_EQ(request.header("Authorization"), "");
    }
}

TEST_F(TokenLeakTest, ofAnArchiveThatLiesElsewhere) {
    givenSignedIn();
    tests::RawServer far;
    far.thenAlways(tests::answerAndClose(tests::httpAnswer(404, "gone")));
    service.fail(Service::archive, Failure::redirect(far.url("/x.zip")));
    checkAndUpdate();
    ASSERT_EQ(far.requests().size(), 1U);
    EXPECT_FALSE(holdsSecret(far.requests().front().head + far.requests().front().body));
}

TEST_F(TokenLeakTest, ofInstallationsThatFail) {
    givenSignedIn();
    const auto plugin = disk / "plugins/com.tarnwick.zuvo";
    for (const auto& resources :
         std::vector<std::optional<std::string>>{disk / "resources", std::nullopt, "/nowhere"}) {
        PluginManager manager(shell, resources, plugin);
        shell->thenFails("no password");
        runToEnd(manager.install());
        hear(manager);
        runToEnd(manager.install());
        hear(manager);
        shell->thenFails("no password");
        runToEnd(manager.uninstall());
        hear(manager);
        runToEnd(manager.reinstall());
        hear(manager);
        runToEnd(manager.uninstall());
        hear(manager);
    }
}

} // namespace
} // namespace zuvo::endtoend
