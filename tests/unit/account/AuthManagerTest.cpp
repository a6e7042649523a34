#include "account/AuthManager.h"

#include "AccountFixture.h"

#include <QtGlobal>
#include <filesystem>
#include <sys/stat.h>

using namespace std::chrono_literals;
using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

namespace fs = std::filesystem;

const std::string adasFile = R"({"token":"zuvo_ada","email":"ada@example.com","name":"Ada"})";

class AuthManagerTest : public AccountTest {
protected:
    void make() { make(client()); }
    void make(APIClient client) {
        manager = std::make_unique<AuthManager>(std::move(client), desktop, tokenFile);
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
        runEventLoop(50ms);
        thenNobodyIsSignedIn();
        EXPECT_EQ(manager->errorMessage(), std::nullopt);
        EXPECT_EQ(server.connectionCount(), 0);
        manager.reset();
    }

    bool fileExists() const { return fs::exists(tokenFile); }

    std::unique_ptr<AuthManager> manager;
    std::vector<std::string> signalNames;
};

} // namespace

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

TEST_F(AuthManagerTest, theFileGoesIntoANewFolderWithPlainPermissionsAndNothingBesideIt) {
    givenAda();
    EXPECT_EQ(std::distance(fs::directory_iterator(home / ".zuvo"), fs::directory_iterator()), 1);
    const auto plain = home.write("plain", "");
    struct stat written = {};
    struct stat ordinary = {};
    ASSERT_EQ(::stat(tokenFile.c_str(), &written), 0);
    ASSERT_EQ(::stat(plain.c_str(), &ordinary), 0);
    EXPECT_EQ(written.st_mode, ordinary.st_mode);
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

// The stored token

TEST_F(AuthManagerTest, aStoredTokenNamesItsUserWhoCountsAsSignedInOnceTheServiceHasAnswered) {
    home.write(".zuvo/token.json", adasFile);
    server.then(answer(httpAnswer(200, adaAsJson)));
    make();
    EXPECT_FALSE(manager->isSignedIn());
    EXPECT_EQ(manager->getToken(), "zuvo_ada");
    EXPECT_EQ(manager->userName(), "Ada");
    EXPECT_EQ(manager->userEmail(), "ada@example.com");
    EXPECT_EQ(manager->credits(), 0);
    EXPECT_EQ(manager->plan(), "Free");
    ASSERT_TRUE(waitUntil([this] { return manager->isSignedIn(); }));
    thenAdaIsSignedIn();
    EXPECT_THAT(signalNames, ElementsAre("credits", "plan", "isSignedIn"));
    EXPECT_THAT(server.requests().front().header("Authorization"), ElementsAre("Bearer zuvo_ada"));
}

TEST_F(AuthManagerTest, aStoredTokenOutlivesATimeWithoutANetwork) {
    home.write(".zuvo/token.json", adasFile);
    make(clientWithoutService());
    refresh();
    runEventLoop(50ms);
    EXPECT_FALSE(manager->isSignedIn());
    EXPECT_EQ(manager->getToken(), "zuvo_ada");
    EXPECT_EQ(manager->userName(), "Ada");
    EXPECT_EQ(manager->errorMessage(), std::nullopt);
    EXPECT_EQ(home.read(".zuvo/token.json"), adasFile);
}

TEST_F(AuthManagerTest, aStoredTokenThatTheServiceRefusesIsForgotten) {
    home.write(".zuvo/token.json", adasFile);
    server.then(answer(httpAnswer(401, "no")));
    make();
    ASSERT_TRUE(waitUntil([this] { return !manager->getToken(); }));
    thenNobodyIsSignedIn();
    EXPECT_FALSE(fileExists());
    EXPECT_EQ(manager->errorMessage(), std::nullopt);
}

TEST_F(AuthManagerTest, aFileWithoutNameAndEmailIsOneAndLeavesThemEmpty) {
    for (const std::string file : {R"({"token":"t"})", R"({"token":"t","name":null,"email":null,"more":1})"}) {
        home.write(".zuvo/token.json", file);
        make(clientWithoutService());
        EXPECT_EQ(manager->getToken(), "t");
        EXPECT_EQ(manager->userName(), "");
        EXPECT_EQ(manager->userEmail(), "");
        refresh();
    }
}

TEST_F(AuthManagerTest, aFileWithoutATokenOrThatDoesNotDecodeIsTreatedAsNoFile) {
    const std::vector<std::string> files = {R"({"email":"a@b","name":"Ada"})",
                                            R"({"token":null})",
                                            R"({"token":1})",
                                            R"({"token":"t","name":1})",
                                            R"({"token":"zuvo_a)",
                                            "",
                                            "[]",
                                            "\"zuvo_ada\"",
                                            "zuvo_ada",
                                            "{\"token\":\"\xFF\"}",
                                            std::string(200'000, '['),
                                            std::string(1000, '\0')};
    for (const auto& file : files) {
        SCOPED_TRACE(file.substr(0, 40));
        home.write(".zuvo/token.json", file);
        thenTheFileCountsAsNone();
        EXPECT_EQ(home.read(".zuvo/token.json"), file) << "and is left as it is";
    }
}

TEST_F(AuthManagerTest, aFolderInPlaceOfTheFileIsTreatedAsNoFile) {
    home.makeFolder(".zuvo/token.json");
    thenTheFileCountsAsNone();
}

TEST_F(AuthManagerTest, aFileInPlaceOfTheFolderIsTreatedAsNoFile) {
    home.write(".zuvo", "x");
    thenTheFileCountsAsNone();
}

TEST_F(AuthManagerTest, aPipeOrADeviceInPlaceOfTheFileIsTreatedAsNoFile) {
    home.makeFolder(".zuvo");
    ASSERT_EQ(::mkfifo(tokenFile.c_str(), 0600), 0);
    thenTheFileCountsAsNone();
    fs::remove(tokenFile);
    fs::create_symlink("/dev/zero", tokenFile);
    thenTheFileCountsAsNone();
}

TEST_F(AuthManagerTest, aFileTooLargeToBeOursIsTreatedAsNoFile) {
    home.write(".zuvo/token.json", R"({"token":"t"})");
    fs::resize_file(tokenFile, 1ULL << 32U); // sparse
    thenTheFileCountsAsNone();
}

TEST_F(AuthManagerTest, aStoredTokenWithALineEndIsNeverSentAndChangesNothing) {
    home.write(".zuvo/token.json", R"({"token":"abc\r\nX-Evil: 1","name":"Ada"})");
    make();
    refresh();
    runEventLoop(50ms);
    EXPECT_EQ(server.connectionCount(), 0);
    EXPECT_FALSE(manager->isSignedIn());
    EXPECT_EQ(manager->userName(), "Ada");
    EXPECT_TRUE(fileExists());
}

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
    server.then(held.hold());
    server.then(answer(httpAnswer(200, bobAsJson)));
    RunningTask<void> refreshing(manager->refreshUser());
    ASSERT_TRUE(waitForRequests(2));
    signIn("zuvo_bob");
    thenBobIsSignedIn();
    held.give(httpAnswer(200, adaAsJson));
    refreshing.result();
    thenBobIsSignedIn();
}

TEST_F(AuthManagerTest, aLate401ForAReplacedTokenDoesNotSignOut) {
    givenAda();
    server.then(held.hold());
    server.then(answer(httpAnswer(200, bobAsJson)));
    RunningTask<void> refreshing(manager->refreshUser());
    ASSERT_TRUE(waitForRequests(2));
    signIn("zuvo_bob");
    held.give(httpAnswer(401, "expired"));
    refreshing.result();
    thenBobIsSignedIn();
}

TEST_F(AuthManagerTest, aLate401OfTheSameTokenSignedInAnewDoesNotSignOut) {
    givenAda();
    server.then(held.hold());
    server.then(answer(httpAnswer(200, adaAsJson)));
    RunningTask<void> refreshing(manager->refreshUser());
    ASSERT_TRUE(waitForRequests(2));
    signIn("zuvo_ada");
    held.give(httpAnswer(401, "expired"));
    refreshing.result();
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

// Sign-in links

TEST_F(AuthManagerTest, aSignInLinkSignsIn) {
    make();
    server.then(answer(httpAnswer(200, adaAsJson)));
    manager->handleCallback("zuvo-manager://callback?token=zuvo%5Fada");
    EXPECT_FALSE(manager->isLoading()) << "it starts with the next turn of the event loop";
    ASSERT_TRUE(waitUntil([this] { return manager->isSignedIn(); }));
    thenAdaIsSignedIn();
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
