#include "AuthManagerFixture.h"

using namespace std::chrono_literals;
using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::IsEmpty;

namespace fs = std::filesystem;

// Refreshing

TEST_F(AuthManagerTest, aRefreshWithoutATokenAsksNothing) {
    make();
    refresh();
    runEventLoop(50ms);
    EXPECT_EQ(server.connectionCount(), 0);
    EXPECT_THAT(signalNames, IsEmpty());
}

TEST_F(AuthManagerTest, aRefreshTakesOverWhatTheServiceSaysNow) {
    givenAda();
    server.then(answer(
        httpAnswer(200, R"({"id":"u1","name":"Ada L","email":"ada@example.com","credits":41,"plan":"Studio"})")));
    refresh();
    EXPECT_TRUE(manager->isSignedIn());
    EXPECT_EQ(manager->userName(), "Ada L");
    EXPECT_EQ(manager->credits(), 41);
    EXPECT_THAT(signalNames, ElementsAre("userName", "credits")) << "what has not changed is not told";
    EXPECT_EQ(home.read(".zuvo/token.json"), adasFile) << "the file is not written anew";
}

TEST_F(AuthManagerTest, aRefreshThatFindsNothingNewTellsNothing) {
    givenAda();
    server.then(answer(httpAnswer(200, adaAsJson)));
    refresh();
    EXPECT_THAT(signalNames, IsEmpty());
}

TEST_F(AuthManagerTest, aRefreshAnsweredWith401SignsOutAndDeletesTheFile) {
    givenAda();
    server.then(answer(httpAnswer(401, "expired")));
    refresh();
    thenNobodyIsSignedIn();
    EXPECT_FALSE(fileExists());
    EXPECT_EQ(manager->errorMessage(), std::nullopt);
}

TEST_F(AuthManagerTest, aRefreshThatFailsInAnyOtherWayChangesNothing) {
    givenAda();
    const std::vector<Behaviour> failures = {answer(httpAnswer(500, "oops")),
                                             answer(httpAnswer(403, "no")),
                                             answer(httpAnswer(300, "x")),
                                             answer(httpAnswer(200, "{}")),
                                             answer(httpAnswer(200, "")),
                                             closeUnanswered(),
                                             answerAndClose("HTTP/1.1 401 No\r\nContent-Length: 100\r\n\r\nhalf")};
    for (const auto& failure : failures) {
        server.then(failure);
        refresh();
        thenAdaIsSignedIn();
    }
    EXPECT_EQ(manager->errorMessage(), std::nullopt);
    EXPECT_THAT(signalNames, IsEmpty());
}

TEST_F(AuthManagerTest, aLateAnswerForAReplacedTokenChangesNothing) {
    givenAda();
    refreshAcrossASignIn("zuvo_bob", bobAsJson, httpAnswer(200, adaAsJson));
    thenBobIsSignedIn();
}

TEST_F(AuthManagerTest, aLate401ForAReplacedTokenDoesNotSignOut) {
    givenAda();
    refreshAcrossASignIn("zuvo_bob", bobAsJson, httpAnswer(401, "expired"));
    thenBobIsSignedIn();
}

TEST_F(AuthManagerTest, aLate401OfTheSameTokenSignedInAnewDoesNotSignOut) {
    givenAda();
    refreshAcrossASignIn("zuvo_ada", adaAsJson, httpAnswer(401, "expired"));
    thenAdaIsSignedIn();
}

TEST_F(AuthManagerTest, aLateAnswerAfterASignOutDoesNotSignInAgain) {
    givenAda();
    server.then(held.hold());
    RunningTask<void> refreshing(manager->refreshUser());
    ASSERT_TRUE(waitForRequests(2));
    manager->signOut();
    held.give(httpAnswer(200, adaAsJson));
    refreshing.result();
    thenNobodyIsSignedIn();
    EXPECT_FALSE(fileExists());
}

// Signing out

TEST_F(AuthManagerTest, signingOutForgetsUserTokenAndFile) {
    givenAda();
    manager->signOut();
    thenNobodyIsSignedIn();
    EXPECT_FALSE(fileExists());
    EXPECT_THAT(signalNames, ElementsAre("userName", "userEmail", "credits", "plan", "isSignedIn"));
    manager->signOut();
    EXPECT_EQ(signalNames.size(), 5U) << "there is nothing left to tell";
}

TEST_F(AuthManagerTest, signingOutLeavesTheErrorMessage) {
    givenAda();
    signIn("");
    manager->signOut();
    EXPECT_EQ(manager->errorMessage(), "Please enter a valid token");
}

TEST_F(AuthManagerTest, aFileThatCannotBeDeletedDoesNotKeepAnybodySignedIn) {
    givenAda();
    fs::remove(tokenFile);
    home.write(".zuvo/token.json/inside", "x");
    manager->signOut();
    thenNobodyIsSignedIn();
    EXPECT_EQ(manager->errorMessage(), std::nullopt);
    EXPECT_EQ(home.read(".zuvo/token.json/inside"), "x");
}

// Its end

TEST_F(AuthManagerTest, aManagerThatEndsWhileItWaitsIsNoCrash) {
    home.write(".zuvo/token.json", adasFile);
    make(clientWithoutService());
    manager.reset(); // before the refresh has begun
    runEventLoop(50ms);

    server.thenAlways(answerAfter(100ms, httpAnswer(200, bobAsJson)));
    make();
    RunningTask<void> signingIn(manager->signInWithToken("zuvo_bob"));
    RunningTask<void> refreshing(manager->refreshUser());
    ASSERT_TRUE(waitForRequests(2));
    manager.reset();
    signingIn.result();
    refreshing.result();
    EXPECT_EQ(home.read(".zuvo/token.json"), adasFile) << "a manager that is gone writes nothing";
}

TEST_F(AuthManagerTest, aManagerThatEndsBeforeItsLinkIsHandledIsNoCrash) {
    make();
    manager->handleCallback("zuvo-manager://callback?token=abc");
    manager.reset();
    runEventLoop(50ms);
    EXPECT_EQ(server.connectionCount(), 0);
}

TEST_F(AuthManagerTest, aSlotMayEndTheManager) {
    make();
    server.then(answer(httpAnswer(200, adaAsJson)));
    QObject::connect(manager.get(), &AuthManager::userNameChanged, http.get(), [this] { manager.reset(); });
    auto* passing = manager.get();
    RunningTask<void> task(passing->signInWithToken("zuvo_ada"));
    task.result();
    EXPECT_EQ(manager, nullptr);
}

TEST_F(AuthManagerTest, aSlotThatSignsOutIsNotOverruledByTheSignInItHeardOf) {
    make();
    server.then(answer(httpAnswer(200, adaAsJson)));
    QObject::connect(manager.get(), &AuthManager::userNameChanged, manager.get(), [this] {
        if (manager->userName() == "Ada")
            manager->signOut();
    });
    signIn("zuvo_ada");
    thenNobodyIsSignedIn();
    EXPECT_FALSE(fileExists());
}
