#include "platform/Platform.h"

#include "fakes/CoroutineTest.h"

#include <QCoreApplication>
#include <gmock/gmock.h>
#include <set>

using namespace zuvo;
using namespace zuvo::tests;

namespace {

std::string hashOfAnotherStart(const std::string& text) {
    ProcessRequest request;
    request.program = QCoreApplication::applicationFilePath().toStdString();
    request.arguments = {"--text-hash", text};
    request.keepsOutput = true;
    ChildProcessRunner runner;
    auto outcome = runToEnd(runner.run(std::move(request)));
    EXPECT_TRUE(outcome.succeeded);
    EXPECT_NE(outcome.standardOutput, "");
    return outcome.standardOutput;
}

} // namespace

TEST(Platform, aUuidIsUpperCaseWithHyphensAndWithoutBraces) {
    const auto platform = Platform::ofThisMachine();
    std::set<std::string> seen;
    for (int i = 0; i < 100; ++i) {
        const auto uuid = platform.newUuid();
        EXPECT_THAT(uuid, testing::MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}"));
        seen.insert(uuid);
    }
    EXPECT_EQ(seen.size(), 100U);
}

TEST(Platform, theSameTextHasTheSameHashWithinOneStart) {
    const std::string text = "/clips/a.mov,/clips/b.mov";
    const auto hash = Platform::ofThisMachine().textHash(text);
    EXPECT_EQ(Platform::ofThisMachine().textHash(std::string(text)), hash);
}

TEST(Platform, differentTextsHaveDifferentHashes) {
    const auto hash = Platform::ofThisMachine().textHash;
    std::set<std::uint64_t> hashes;
    for (const std::string text : {"", "/a.mov", "/b.mov", "/a.mov,/b.mov", "/b.mov,/a.mov", "/a.mov ", "/ä.mov"})
        hashes.insert(hash(text));
    EXPECT_EQ(hashes.size(), 7U);
}

TEST(Platform, theHashIsSeededAnewAtEveryStart) {
    const auto first = hashOfAnotherStart("/clips/a.mov");
    const auto second = hashOfAnotherStart("/clips/a.mov");
    const auto own = std::to_string(Platform::ofThisMachine().textHash("/clips/a.mov")) + "\n";
    EXPECT_NE(first, second);
    EXPECT_NE(first, own);
}

TEST(Platform, theClockRuns) {
    const auto platform = Platform::ofThisMachine();
    const auto before = QDateTime::currentMSecsSinceEpoch();
    const auto now = platform.clock().toMSecsSinceEpoch();
    EXPECT_GE(now, before);
    EXPECT_LE(now, QDateTime::currentMSecsSinceEpoch());
}
