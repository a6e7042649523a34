#pragma once

#include "account/AuthManager.h"

#include "AccountFixture.h"

#include <filesystem>

namespace zuvo::tests {

inline const std::string adasFile = R"({"token":"zuvo_ada","email":"ada@example.com","name":"Ada"})";

/// A manager of the test's own, over a service that answers as the test says and a token file in a folder of its own.
class AuthManagerTest : public AccountTest {
protected:
    void make() { make(client()); }
    void make(APIClient client) {
        manager = std::make_unique<AuthManager>(std::move(client), desktop, tokenFile, [this] { return now; });
        listen();
    }

    /// Writes down each signal by name.
    void listen() {
        const auto note = [this](const char* name) { return [this, name] { signalNames.emplace_back(name); }; };
        auto* sender = manager.get();
        QObject::connect(sender, &AuthManager::isSignedInChanged, sender, note("isSignedIn"));
        QObject::connect(sender, &AuthManager::userNameChanged, sender, note("userName"));
        QObject::connect(sender, &AuthManager::userEmailChanged, sender, note("userEmail"));
        QObject::connect(sender, &AuthManager::creditsChanged, sender, note("credits"));
        QObject::connect(sender, &AuthManager::planChanged, sender, note("plan"));
        QObject::connect(sender, &AuthManager::isLoadingChanged, sender, note("isLoading"));
        QObject::connect(sender, &AuthManager::errorMessageChanged, sender, note("errorMessage"));
    }

    void signIn(const std::string& token) { runToEnd(manager->signInWithToken(token)); }
    void refresh() { runToEnd(manager->refreshUser()); }

    /// A refresh that is answered with `late` only when, after it was asked for, the token was signed in whose answer
    /// is `user`.
    void refreshAcrossASignIn(const std::string& token, const std::string& user, const std::string& late) {
        server.then(held.hold());
        server.then(answer(httpAnswer(200, user)));
        RunningTask<void> refreshing(manager->refreshUser());
        ASSERT_TRUE(waitForRequests(2));
        signIn(token);
        held.give(late);
        refreshing.result();
    }

    /// A manager that is signed in as Ada; what it took to get there is forgotten.
    void givenAda() {
        make();
        server.then(answer(httpAnswer(200, adaAsJson)));
        signIn("zuvo_ada");
        thenAdaIsSignedIn();
        signalNames.clear();
    }

    void thenAdaIsSignedIn() const {
        EXPECT_TRUE(manager->isSignedIn());
        EXPECT_EQ(manager->userName(), "Ada");
        EXPECT_EQ(manager->userEmail(), "ada@example.com");
        EXPECT_EQ(manager->credits(), 42);
        EXPECT_EQ(manager->plan(), "Studio");
        EXPECT_EQ(manager->getToken(), "zuvo_ada");
        EXPECT_FALSE(manager->isLoading());
        EXPECT_EQ(home.read(".zuvo/token.json"), adasFile);
    }

    void thenBobIsSignedIn() const {
        EXPECT_TRUE(manager->isSignedIn());
        EXPECT_EQ(manager->userName(), "Bob");
        EXPECT_EQ(manager->credits(), 7);
        EXPECT_EQ(manager->getToken(), "zuvo_bob");
        EXPECT_EQ(home.read(".zuvo/token.json"), R"({"token":"zuvo_bob","email":"bob@example.com","name":"Bob"})");
    }

    void thenNobodyIsSignedIn() const {
        EXPECT_FALSE(manager->isSignedIn());
        EXPECT_EQ(manager->userName(), "");
        EXPECT_EQ(manager->userEmail(), "");
        EXPECT_EQ(manager->credits(), 0);
        EXPECT_EQ(manager->plan(), "Free");
        EXPECT_EQ(manager->getToken(), std::nullopt);
        EXPECT_FALSE(manager->isLoading());
    }

    /// A manager that was made with this in the token file has read nothing and asks for nothing.
    void thenTheFileCountsAsNone() {
        make();
        runEventLoop(std::chrono::milliseconds(50));
        thenNobodyIsSignedIn();
        EXPECT_EQ(manager->errorMessage(), std::nullopt);
        EXPECT_EQ(server.connectionCount(), 0);
        manager.reset();
    }

    bool fileExists() const { return std::filesystem::exists(tokenFile); }

    QDateTime now{QDate(2026, 3, 4), QTime(12, 0), Qt::UTC};
    std::unique_ptr<AuthManager> manager;
    std::vector<std::string> signalNames;
};

} // namespace zuvo::tests
