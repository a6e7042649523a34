#include "AuthManagerFixture.h"

#include <limits>
#include <sys/stat.h>

using namespace std::chrono_literals;
using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace fs = std::filesystem;

TEST_F(AuthManagerTest, atFirstNobodyIsSignedIn) {
    make();
    thenNobodyIsSignedIn();
    EXPECT_EQ(manager->errorMessage(), std::nullopt);
    EXPECT_FALSE(fileExists());
    EXPECT_FALSE(fs::exists(home / ".zuvo"));
}

// Opening the browser

TEST_F(AuthManagerTest, signingInOpensTheSignInPageInTheBrowser) {
    make();
    manager->signIn();
    EXPECT_THAT(desktop->urls, ElementsAre(server.url("/plugin-auth?callback=zuvo-manager%3A%2F%2Fcallback")));
    EXPECT_THAT(signalNames, IsEmpty());
}

TEST_F(AuthManagerTest, aRefusedServiceAddressIsToldAndNothingIsOpened) {
    make(refusedClient());
    manager->signIn();
    EXPECT_THAT(desktop->urls, IsEmpty());
    EXPECT_EQ(manager->errorMessage(), "ZUVO_SERVICE_URL must be https, or http to this machine or a private network: "
                                       "http://service.example");
    EXPECT_THAT(signalNames, ElementsAre("errorMessage"));
}

// Signing in with a token

TEST_F(AuthManagerTest, aTokenThatTheServiceAcceptsSignsItsOwnerIn) {
    make();
    server.then(answer(httpAnswer(200, adaAsJson)));
    signIn("zuvo_ada");
    thenAdaIsSignedIn();
    EXPECT_EQ(manager->errorMessage(), std::nullopt);
    EXPECT_EQ(server.requests().front().requestLine(), "GET /api/v1/me HTTP/1.1");
    EXPECT_THAT(server.requests().front().header("Authorization"), ElementsAre("Bearer zuvo_ada"));
    EXPECT_THAT(signalNames,
                ElementsAre("isLoading", "userName", "userEmail", "credits", "plan", "isLoading", "isSignedIn"));
}

TEST_F(AuthManagerTest, whiteSpaceAndLineEndsAroundATokenAreDropped) {
    make();
    server.then(answer(httpAnswer(200, adaAsJson)));
    signIn(" \t\r\n zuvo_ada\u00A0\u2028\n");
    thenAdaIsSignedIn();
    EXPECT_THAT(server.requests().front().header("Authorization"), ElementsAre("Bearer zuvo_ada"));
}

TEST_F(AuthManagerTest, aTokenOfOnlyBlanksMakesNoRequest) {
    make();
    for (const std::string token : {"", " ", " \t\r\n ", "\u00A0\u2003"}) {
        signalNames.clear();
        signIn(token);
        EXPECT_EQ(manager->errorMessage(), "Please enter a valid token");
        EXPECT_THAT(signalNames, Not(testing::Contains("isLoading")));
        thenNobodyIsSignedIn();
    }
    runEventLoop(50ms);
    EXPECT_EQ(server.connectionCount(), 0);
    EXPECT_FALSE(fileExists());
}

TEST_F(AuthManagerTest, aBlankTokenLeavesWhoIsSignedIn) {
    givenAda();
    signIn(" ");
    thenAdaIsSignedIn();
    EXPECT_EQ(manager->errorMessage(), "Please enter a valid token");
}

TEST_F(AuthManagerTest, itIsLoadingWhileTheServiceIsAwaitedAndTheFormerMessageIsGone) {
    make();
    signIn("");
    server.then(held.hold());
    RunningTask<void> task(manager->signInWithToken("zuvo_ada"));
    EXPECT_TRUE(manager->isLoading());
    EXPECT_EQ(manager->errorMessage(), std::nullopt);
    EXPECT_FALSE(manager->isSignedIn());
    EXPECT_EQ(manager->getToken(), std::nullopt);
    ASSERT_TRUE(waitForRequests(1));
    EXPECT_TRUE(manager->isLoading());
    held.give(httpAnswer(200, adaAsJson));
    task.result();
    EXPECT_FALSE(manager->isLoading());
    thenAdaIsSignedIn();
}

TEST_F(AuthManagerTest, aRefusedTokenLeavesTheEarlierTokenAndFileAsTheyWere) {
    givenAda();
    server.then(answer(httpAnswer(401, "no such token")));
    signIn("zuvo_bob");
    EXPECT_EQ(manager->errorMessage(), "Server error 401: no such token");
    thenAdaIsSignedIn();
    EXPECT_THAT(signalNames, ElementsAre("isLoading", "errorMessage", "isLoading"));
}

TEST_F(AuthManagerTest, everyKindOfFailureIsToldInItsOwnWords) {
    make();
    server.then(answer(httpAnswer(299, "{}")));
    signIn("t");
    EXPECT_EQ(manager->errorMessage(), "Failed to parse response: id is missing");
    server.then(answer(httpAnswer(300, "x")));
    signIn("t");
    EXPECT_EQ(manager->errorMessage(), "Server error 300: x");
    server.then(answer(httpAnswer(500, "")));
    signIn("t");
    EXPECT_EQ(manager->errorMessage(), "Server error 500: ");
    server.then(answer(httpAnswer(500, "\xFF")));
    signIn("t");
    EXPECT_EQ(manager->errorMessage(), "Server error 500: Unknown error");
    server.then(closeUnanswered());
    signIn("t");
    EXPECT_EQ(manager->errorMessage(), "Network error: Connection closed");
    thenNobodyIsSignedIn();
    EXPECT_FALSE(fileExists());
}

TEST_F(AuthManagerTest, aServiceThatIsNotThereOrSlowOrRefusedIsToldAndLoadingEnds) {
    make(clientWithoutService());
    signIn("t");
    EXPECT_THAT(manager->errorMessage().value_or(""), StartsWith("Network error: "));
    thenNobodyIsSignedIn();

    server.then(stall());
    make(client(100ms));
    signIn("t");
    EXPECT_EQ(manager->errorMessage(), "Network error: The request timed out");
    thenNobodyIsSignedIn();

    make(refusedClient());
    signIn("t");
    EXPECT_THAT(manager->errorMessage().value_or(""), StartsWith("Network error: ZUVO_SERVICE_URL must be"));
    thenNobodyIsSignedIn();
}

TEST_F(AuthManagerTest, aTokenWithALineEndWithinIsNotSent) {
    make();
    signIn("abc\r\nX-Evil: 1");
    EXPECT_EQ(manager->errorMessage(),
              "Network error: The value of the header Authorization holds a line end or another control character");
    thenNobodyIsSignedIn();
    EXPECT_EQ(server.connectionCount(), 0);
    EXPECT_FALSE(fileExists());
}

TEST_F(AuthManagerTest, aTokenOfAHundredKilobytesWorksAndIsReadAgain) {
    const std::string token(100'000, 'x');
    make();
    server.thenAlways(answer(httpAnswer(200, adaAsJson)));
    signIn(token);
    EXPECT_TRUE(manager->isSignedIn());
    EXPECT_THAT(server.requests().front().header("Authorization"), ElementsAre("Bearer " + token));
    make();
    EXPECT_EQ(manager->getToken(), token);
    EXPECT_TRUE(waitUntil([this] { return manager->isSignedIn(); }));
}

TEST_F(AuthManagerTest, theFileGoesIntoANewFolderAndNothingBesideIt) {
    givenAda();
    EXPECT_EQ(std::distance(fs::directory_iterator(home / ".zuvo"), fs::directory_iterator()), 1);
}

TEST_F(AuthManagerTest, theFolderIsMadeWithTheFoldersAboveIt) {
    tokenFile = home / "a/b/c/token.json";
    make();
    server.then(answer(httpAnswer(200, adaAsJson)));
    signIn("zuvo_ada");
    EXPECT_EQ(home.read("a/b/c/token.json"), adasFile);
}

TEST_F(AuthManagerTest, aNewTokenReplacesTheFile) {
    givenAda();
    server.then(answer(httpAnswer(200, bobAsJson)));
    signIn("zuvo_bob");
    thenBobIsSignedIn();
}

TEST_F(AuthManagerTest, aTokenThatCannotBeSavedDoesNotSignIn) {
    home.write(".zuvo", "a file where the folder should be");
    make();
    server.then(answer(httpAnswer(200, adaAsJson)));
    signIn("zuvo_ada");
    EXPECT_EQ(manager->errorMessage(), "Not a directory");
    thenNobodyIsSignedIn();
    EXPECT_EQ(home.read(".zuvo"), "a file where the folder should be");
}

TEST_F(AuthManagerTest, aFolderInPlaceOfTheFileCannotBeReplaced) {
    home.write(".zuvo/token.json/inside", "x");
    make();
    server.then(answer(httpAnswer(200, adaAsJson)));
    signIn("zuvo_ada");
    EXPECT_EQ(manager->errorMessage(), "Is a directory");
    thenNobodyIsSignedIn();
    EXPECT_EQ(home.read(".zuvo/token.json/inside"), "x");
}

TEST_F(AuthManagerTest, aFailedSavingLeavesWhoWasSignedIn) {
    givenAda();
    fs::rename(home / ".zuvo", home / "kept");
    home.write(".zuvo", "");
    server.then(answer(httpAnswer(200, bobAsJson)));
    signIn("zuvo_bob");
    EXPECT_EQ(manager->errorMessage(), "Not a directory");
    EXPECT_TRUE(manager->isSignedIn());
    EXPECT_EQ(manager->userName(), "Ada");
    EXPECT_EQ(manager->getToken(), "zuvo_ada");
}

TEST_F(AuthManagerTest, ofTwoSignInsAtOnceTheLastAnswerWins) {
    make();
    server.then(held.hold());
    server.then(answer(httpAnswer(200, bobAsJson)));
    RunningTask<void> ada(manager->signInWithToken("zuvo_ada"));
    ASSERT_TRUE(waitForRequests(1));
    RunningTask<void> bob(manager->signInWithToken("zuvo_bob"));
    bob.result();
    thenBobIsSignedIn();
    held.give(httpAnswer(200, adaAsJson));
    ada.result();
    thenAdaIsSignedIn();
}

TEST_F(AuthManagerTest, hostileWordsInAnAccountAreKeptAsTheyAreAndComeBack) {
    make();
    server.then(answer(httpAnswer(
        200,
        R"({"id":"","name":"\u001b[31m\"\\\n</script>","email":"a\r\nb","credits":-9223372036854775808,"plan":""})")));
    signIn("t");
    EXPECT_TRUE(manager->isSignedIn());
    EXPECT_EQ(manager->userName(), "\x1b[31m\"\\\n</script>");
    EXPECT_EQ(manager->credits(), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(manager->plan(), "");
    make();
    EXPECT_EQ(manager->userName(), "\x1b[31m\"\\\n</script>");
    EXPECT_EQ(manager->userEmail(), "a\r\nb");
    manager.reset();
}

// Sign-in links

TEST_F(AuthManagerTest, aSignInLinkSignsIn) {
    make();
    manager->signIn();
    now = now.addSecs(600); // the last moment of the ten minutes
    server.then(answer(httpAnswer(200, adaAsJson)));
    manager->handleCallback("zuvo-manager://callback?token=zuvo%5Fada");
    EXPECT_FALSE(manager->isLoading()) << "it starts with the next turn of the event loop";
    ASSERT_TRUE(waitUntil([this] { return manager->isSignedIn(); }));
    thenAdaIsSignedIn();
    EXPECT_FALSE(manager->offeredUser());
}

TEST_F(AuthManagerTest, anyOtherLinkChangesNothing) {
    make();
    for (const std::string url : {"zuvo-manager://callback", "zuvo-manager://other?token=abc",
                                  "https://callback?token=a", "zuvo-manager://callback?token", ""})
        manager->handleCallback(url);
    runEventLoop(50ms);
    EXPECT_THAT(signalNames, IsEmpty());
    EXPECT_EQ(server.connectionCount(), 0);
}

TEST_F(AuthManagerTest, aLinkWithAnEmptyTokenAsksForAValidOne) {
    make();
    manager->handleCallback("zuvo-manager://callback?token=");
    ASSERT_TRUE(waitUntil([this] { return manager->errorMessage().has_value(); }));
    EXPECT_EQ(manager->errorMessage(), "Please enter a valid token");
    EXPECT_EQ(server.connectionCount(), 0);
}

TEST_F(AuthManagerTest, aLinkWithAnEncodedLineEndSendsNothing) {
    make();
    manager->handleCallback("zuvo-manager://callback?token=abc%0D%0AX-Evil:%201");
    ASSERT_TRUE(waitUntil([this] { return manager->errorMessage().has_value(); }));
    EXPECT_EQ(server.connectionCount(), 0);
    thenNobodyIsSignedIn();
}

// The token on the disk is for its owner alone

namespace {

/// A mask that leaves everything to everybody, for one test.
class NoMask {
public:
    NoMask() : m_before(umask(0)) {}
    ~NoMask() { umask(m_before); }
    NoMask(const NoMask&) = delete;
    NoMask& operator=(const NoMask&) = delete;

private:
    mode_t m_before;
};

mode_t modeOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    constexpr mode_t permissions = 07777;
    return status.st_mode & permissions;
}

} // namespace

TEST_F(AuthManagerTest, aNewTokenFileAndItsFolderAreTheirOwnersAlone) {
    const NoMask mask;
    givenAda();
    EXPECT_EQ(modeOf(tokenFile), 0600U);
    EXPECT_EQ(modeOf(fs::path(tokenFile).parent_path().string()), 0700U);
}

TEST_F(AuthManagerTest, whatAnEarlierVersionLeftOpenToOthersIsClosedAtTheStart) {
    const NoMask mask;
    home.write(".zuvo/token.json", adasFile);
    ASSERT_EQ(modeOf(tokenFile), 0666U);
    server.then(answer(httpAnswer(200, adaAsJson)));
    make();
    EXPECT_EQ(modeOf(tokenFile), 0600U);
    EXPECT_EQ(modeOf(fs::path(tokenFile).parent_path().string()), 0700U);
    EXPECT_TRUE(waitUntil([this] { return manager->isSignedIn(); }));
}

TEST_F(AuthManagerTest, aStricterModeOfTheUsersStays) {
    const NoMask mask;
    givenAda();
    ASSERT_EQ(chmod(tokenFile.c_str(), 0400), 0);
    server.then(answer(httpAnswer(200, adaAsJson)));
    signIn("zuvo_other");
    EXPECT_EQ(modeOf(tokenFile), 0400U);
    EXPECT_THAT(home.read(".zuvo/token.json"), testing::HasSubstr("zuvo_other"));
}
