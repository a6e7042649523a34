#include "AuthManagerFixture.h"

#include <sys/stat.h>

using namespace std::chrono_literals;
using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;

namespace fs = std::filesystem;

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
