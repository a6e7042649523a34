// A sign-in link that nobody here asked for changes nothing until the user agrees.

#include "AuthManagerFixture.h"

using namespace std::chrono_literals;
using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;

namespace {

class OfferedSignIn : public AuthManagerTest {
protected:
    /// Bob's link, which the service knows.
    void openBobsLink() {
        server.then(answer(httpAnswer(200, bobAsJson)));
        const auto before = requestCount();
        manager->handleCallback("zuvo-manager://callback?token=zuvo_bob");
        ASSERT_TRUE(waitUntil([this] { return manager->offeredUser().has_value() || manager->userName() == "Bob"; }));
        EXPECT_EQ(requestCount(), before + 1);
    }

    void thenBobIsOffered() const {
        ASSERT_TRUE(manager->offeredUser());
        EXPECT_EQ(manager->offeredUser()->name, "Bob");
        EXPECT_EQ(manager->offeredUser()->email, "bob@example.com");
        EXPECT_FALSE(manager->isLoading());
    }
};

} // namespace

TEST_F(OfferedSignIn, aLinkThatNobodyAskedForChangesNothingByItself) {
    givenAda();
    openBobsLink();
    thenBobIsOffered();
    thenAdaIsSignedIn();
}

TEST_F(OfferedSignIn, whereNobodyIsSignedInNobodyIsSignedInByALinkEither) {
    make();
    openBobsLink();
    thenBobIsOffered();
    thenNobodyIsSignedIn();
    EXPECT_FALSE(fileExists());
}

TEST_F(OfferedSignIn, whoeverIsAcceptedIsSignedIn) {
    givenAda();
    openBobsLink();
    manager->acceptOfferedUser();
    thenBobIsSignedIn();
    EXPECT_FALSE(manager->offeredUser());
}

TEST_F(OfferedSignIn, whoeverIsDeclinedIsForgotten) {
    givenAda();
    openBobsLink();
    manager->declineOfferedUser();
    EXPECT_FALSE(manager->offeredUser());
    manager->acceptOfferedUser();
    thenAdaIsSignedIn();
}

TEST_F(OfferedSignIn, aSignInThatWasBegunLongAgoOrInTheFutureAsksToo) {
    givenAda();
    manager->signIn();
    const auto begun = now;
    for (const int seconds : {601, 86'400, -1}) {
        SCOPED_TRACE(seconds);
        now = begun.addSecs(seconds);
        openBobsLink();
        thenBobIsOffered();
        manager->declineOfferedUser();
        thenAdaIsSignedIn();
    }
    now = begun.addSecs(600);
    openBobsLink();
    EXPECT_FALSE(manager->offeredUser());
    thenBobIsSignedIn();
}

TEST_F(OfferedSignIn, aSignInPageThatCouldNotBeOpenedWasNoBeginning) {
    make(refusedClient());
    manager->signIn();
    manager->handleCallback("zuvo-manager://callback?token=zuvo_bob");
    ASSERT_TRUE(waitUntil([this] { return manager->errorMessage().value_or("").starts_with("Network error"); }));
    thenNobodyIsSignedIn();
}

TEST_F(OfferedSignIn, aLinkThatTheServiceRefusesOffersNobody) {
    givenAda();
    server.then(answer(httpAnswer(401, "no such token")));
    manager->handleCallback("zuvo-manager://callback?token=zuvo_bob");
    ASSERT_TRUE(waitUntil([this] { return manager->errorMessage().has_value(); }));
    EXPECT_EQ(manager->errorMessage(), "Server error 401: no such token");
    EXPECT_FALSE(manager->offeredUser());
    thenAdaIsSignedIn();
}

TEST_F(OfferedSignIn, aLaterLinkTakesThePlaceOfAnEarlierOne) {
    make();
    openBobsLink();
    server.then(answer(httpAnswer(200, adaAsJson)));
    manager->handleCallback("zuvo-manager://callback?token=zuvo_ada");
    ASSERT_TRUE(waitUntil([this] { return manager->offeredUser() && manager->offeredUser()->name == "Ada"; }));
    manager->acceptOfferedUser();
    thenAdaIsSignedIn();
}

TEST_F(OfferedSignIn, eachChangeOfTheOfferIsTold) {
    make();
    int changes = 0;
    QObject::connect(manager.get(), &AuthManager::offeredUserChanged, manager.get(), [&changes] { ++changes; });
    openBobsLink();
    EXPECT_EQ(changes, 1);
    manager->declineOfferedUser();
    manager->declineOfferedUser();
    EXPECT_EQ(changes, 2);
}

TEST_F(OfferedSignIn, aManagerThatEndsWhileItAsksWhoseTokenItIsIsNoCrash) {
    make();
    server.then(held.hold());
    manager->handleCallback("zuvo-manager://callback?token=zuvo_bob");
    ASSERT_TRUE(waitForRequests(1));
    manager.reset();
    held.give(httpAnswer(200, bobAsJson));
    runEventLoop(50ms);
    EXPECT_FALSE(fileExists());
}
