// The token is told to the service and to the token file, and to nobody else.

#include "AccountFixture.h"
#include "account/AuthManager.h"
#include "account/CloudProcessor.h"

#include <filesystem>

using namespace std::chrono_literals;
using namespace zuvo;
using namespace zuvo::tests;
using testing::HasSubstr;
using testing::Not;

namespace {

const std::string secret = "zuvo_s3cr3t";

std::string& logged() {
    static std::string lines;
    return lines;
}

void keepLogLine(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& line) {
    logged() += line.toStdString() + "\n";
}

QCoro::Task<void> noPause(std::chrono::milliseconds /*duration*/) {
    co_return;
}

/// Everything that the program says is caught, and looked through at the end of each test.
class TokenSecrecy : public AccountTest {
protected:
    void SetUp() override {
        logged().clear();
        m_formerHandler = qInstallMessageHandler(keepLogLine);
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
    }

    void TearDown() override {
        const auto standardOutput = testing::internal::GetCapturedStdout();
        const auto standardError = testing::internal::GetCapturedStderr();
        qInstallMessageHandler(m_formerHandler);
        for (const auto& said : {standardOutput, standardError, logged(), m_told}) {
            EXPECT_THAT(said, Not(HasSubstr(secret)));
            EXPECT_THAT(said, Not(HasSubstr("s3cr3t")));
        }
    }

    /// Every text that a signal of the manager announces.
    void hearEverythingOf(AuthManager& manager) {
        const auto keep = [this, &manager] {
            m_told += manager.userName() + "|" + manager.userEmail() + "|" + manager.plan() + "|" +
                      manager.errorMessage().value_or("") + "\n";
        };
        QObject::connect(&manager, &AuthManager::userNameChanged, &manager, keep);
        QObject::connect(&manager, &AuthManager::userEmailChanged, &manager, keep);
        QObject::connect(&manager, &AuthManager::planChanged, &manager, keep);
        QObject::connect(&manager, &AuthManager::errorMessageChanged, &manager, keep);
    }

    void signInAndRefreshWith(const std::string& token, const std::optional<Behaviour>& behaviour,
                              const APIClient& client) {
        AuthManager manager(client, desktop, tokenFile);
        hearEverythingOf(manager);
        for (int round = 0; round < 2; ++round) {
            if (behaviour)
                server.then(*behaviour);
            runToEnd(round == 0 ? manager.signInWithToken(token) : manager.refreshUser());
        }
        runEventLoop(10ms);
    }

    std::string m_told;

private:
    QtMessageHandler m_formerHandler = nullptr;
};

} // namespace

TEST_F(TokenSecrecy, ofASignInThatWorksOrFailsInAnyWay) {
    const std::vector<Behaviour> behaviours = {answer(httpAnswer(200, adaAsJson)),
                                               answer(httpAnswer(200, "{}")),
                                               answer(httpAnswer(200, "")),
                                               answer(httpAnswer(299, "\xFF")),
                                               answer(httpAnswer(300, "x")),
                                               answer(httpAnswer(302, "x", {"Location: http://127.0.0.1:1/"})),
                                               answer(httpAnswer(401, "no")),
                                               answer(httpAnswer(500, "oops")),
                                               closeUnanswered(),
                                               resetUnanswered(),
                                               answerAndClose("no http\r\n\r\n")};
    for (const auto& behaviour : behaviours) {
        std::filesystem::remove_all(home / ".zuvo");
        signInAndRefreshWith(secret, behaviour, client(2s));
    }
    EXPECT_GE(requestCount(), behaviours.size());
}

TEST_F(TokenSecrecy, ofATokenThatIsNeverSent) {
    signInAndRefreshWith(secret, std::nullopt, clientWithoutService());
    signInAndRefreshWith(secret, std::nullopt, refusedClient());
    signInAndRefreshWith(secret + "\r\nX: y", std::nullopt, client());
    signInAndRefreshWith("\r\n" + secret + std::string("\0", 1), std::nullopt, client());
    EXPECT_EQ(server.connectionCount(), 0);
}

TEST_F(TokenSecrecy, ofATokenThatCannotBeSaved) {
    home.write(".zuvo", "");
    signInAndRefreshWith(secret, answer(httpAnswer(200, adaAsJson)), client());
}

TEST_F(TokenSecrecy, ofAStoredTokenAndItsFile) {
    for (const std::string& file :
         {R"({"token":")" + secret + R"("})", R"({"token":")" + secret, R"({"token":")" + secret + R"(\r\nX: y"})"}) {
        home.write(".zuvo/token.json", file);
        server.then(answer(httpAnswer(500, "oops")));
        signInAndRefreshWith(" ", std::nullopt, client());
    }
}

TEST_F(TokenSecrecy, ofASignInLink) {
    AuthManager manager(client(), desktop, tokenFile);
    hearEverythingOf(manager);
    server.then(answer(httpAnswer(500, "oops")));
    manager.handleCallback("zuvo-manager://callback?token=" + secret);
    ASSERT_TRUE(waitUntil([&manager] { return manager.errorMessage() == "Server error 500: oops"; }));
    manager.handleCallback("zuvo-manager://other?token=" + secret);
    manager.handleCallback("zuvo-manager://callback:x?token=" + secret);
    manager.handleCallback("zuvo-manager://callback?token=" + secret + "%0A%zz");
    runEventLoop(50ms);
}

TEST_F(TokenSecrecy, ofASignInPageThatIsOpened) {
    home.write(".zuvo/token.json", R"({"token":")" + secret + R"("})");
    AuthManager manager(clientWithoutService(), desktop, tokenFile);
    manager.signIn();
    for (const auto& url : desktop->urls)
        m_told += url;
    runToEnd(manager.refreshUser());
}

TEST_F(TokenSecrecy, ofACloudJobEvenIfTheServiceRepeatsIt) {
    const auto processor = CloudProcessor::create(client(), {[] { return std::string("B"); }, noPause});
    const auto audio = home.write("a.wav", "RIFF");
    server.then(answer(httpAnswer(200, R"({"jobId":"j"})")));
    server.then(answer(httpAnswer(200, "")));
    server.thenAlways(answer(httpAnswer(500, "who is " + secret + "?")));
    m_told += failureOf<CloudProcessorError>(processor->processAudio(audio, secret, MiningMode::fullMine));
    EXPECT_EQ(requestCount(), 122U);

    m_told += failureOf<CloudProcessorError>(processor->processAudio(home / "none", secret, MiningMode::fullMine));
    m_told += failureOf<CloudProcessorError>(processor->processAudio(audio, secret + "\r\nX: y", MiningMode::fullMine));
}
