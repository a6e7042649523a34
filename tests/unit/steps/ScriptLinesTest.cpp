#include "steps/ScriptLines.h"

#include <gmock/gmock.h>

namespace zuvo {
namespace {

using testing::ElementsAre;

struct LineCase {
    const char* line;
    ScriptLineKind kind;
    const char* text;
};

class ScriptLineTable : public testing::TestWithParam<LineCase> {};

TEST_P(ScriptLineTable, isReadByItsPrefix) {
    const auto lines = readScriptLines(GetParam().line);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].kind, GetParam().kind);
    EXPECT_EQ(lines[0].text, GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, ScriptLineTable,
    testing::Values(LineCase{"LOG:Loaded 3 segments", ScriptLineKind::log, "Loaded 3 segments"},
                    LineCase{" \tLOG: a \r", ScriptLineKind::log, " a"},
                    LineCase{"LOG:a LOG:b ERROR:c", ScriptLineKind::log, "a b ERROR:c"},
                    LineCase{"ERROR:Could not ERROR:create", ScriptLineKind::error, "Could not create"},
                    LineCase{"SUCCESS:2/3 SUCCESS:clips", ScriptLineKind::success, "2/3 clips"},
                    LineCase{"SUCCESS:", ScriptLineKind::success, ""}, LineCase{"", ScriptLineKind::other, ""},
                    LineCase{"  ", ScriptLineKind::other, ""}, LineCase{"log:a", ScriptLineKind::other, "log:a"},
                    LineCase{"Traceback ERROR:x", ScriptLineKind::other, "Traceback ERROR:x"}));

TEST(ScriptLines, everyLineOfTheOutputIsGiven) {
    const auto lines = readScriptLines("LOG:a\n\nERROR:b\n");
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[2].kind, ScriptLineKind::error);
    EXPECT_EQ(lines[3].kind, ScriptLineKind::other);
}

TEST(ScriptLines, onlyTheStartOfTheWholeOutputIsAFailureOfAQuestion) {
    EXPECT_TRUE(beginsWithError("ERROR:NO_PROJECT\n"));
    EXPECT_FALSE(beginsWithError("Name\nERROR:NO_PROJECT\n"));
    EXPECT_FALSE(beginsWithError(" ERROR:NO_PROJECT\n"));
    EXPECT_FALSE(beginsWithError(""));
}

TEST(ScriptLines, theReasonOfAQuestionKeepsItsLineEnd) {
    EXPECT_EQ(withoutErrorPrefix("ERROR:NOT_CONNECTED\n"), "NOT_CONNECTED\n");
    EXPECT_EQ(withoutErrorPrefix("ERROR:a ERROR:b"), "a b");
}

TEST(ScriptLines, anAnswerIsItsLinesThatHoldSomething) {
    EXPECT_THAT(answerLines(" Cut 1 \r\n\n\t\nCut 2\n"), ElementsAre("Cut 1", "Cut 2"));
    EXPECT_THAT(answerLines(""), ElementsAre());
}

TEST(ScriptLines, theFirstLineThatHoldsSuccessAnywhereIsTheSummary) {
    EXPECT_EQ(successAnywhere("LOG:a\nSUCCESS:3 clips appended, 0 failed\nSUCCESS:later\n"),
              "3 clips appended, 0 failed");
    EXPECT_EQ(successAnywhere("LOG:x SUCCESS: y SUCCESS:\n"), "LOG:x  y");
    EXPECT_EQ(successAnywhere("ERROR:no\nsuccess:a"), std::nullopt);
    EXPECT_EQ(successAnywhere(""), std::nullopt);
}

TEST(ScriptLines, theSummaryOfABuildSaysHowManyMomentsItAppended) {
    struct Case {
        const char* summary;
        std::int64_t appended;
        std::int64_t total;
        bool areAll;
    };
    for (const auto& one : {Case{"✓ 3/3 clips appended", 3, 3, true}, Case{"2/3 clips appended", 2, 3, false},
                            Case{"✓ 0/12 clips appended", 0, 12, false}, Case{"✓ 0/0 clips appended", 0, 0, true}}) {
        const auto clips = appendedClips(one.summary);
        ASSERT_TRUE(clips.has_value()) << one.summary;
        EXPECT_EQ(clips->appended, one.appended) << one.summary;
        EXPECT_EQ(clips->total, one.total) << one.summary;
        EXPECT_EQ(clips->areAll(), one.areAll) << one.summary;
    }
}

TEST(ScriptLines, aSummaryOfAnotherFormSaysNothingOfMoments) {
    for (const auto* summary :
         {"", "✓ done", "3 clips appended, 0 failed", "✓ 3 clips appended", "✓ a/3 clips appended",
          "✓ 3/ clips appended", "✓ 3/3 clips appended or so", " clips appended"})
        EXPECT_FALSE(appendedClips(summary).has_value()) << summary;
}

TEST(ScriptLines, mediaPathsComeOneALine) {
    EXPECT_THAT(mediaPathsOf("/a/b c.wav\n/d.wav \n\n").value_or(std::vector<std::string>{}),
                ElementsAre("/a/b c.wav", "/d.wav"));
    EXPECT_THAT(mediaPathsOf("/a.wav\nERROR:late\n").value_or(std::vector<std::string>{}), ElementsAre("/a.wav"));
}

TEST(ScriptLines, noPathAtAllIsNoListOfMedia) {
    EXPECT_EQ(mediaPathsOf(""), std::nullopt);
    EXPECT_EQ(mediaPathsOf("\n \n"), std::nullopt);
    EXPECT_EQ(mediaPathsOf("ERROR:NOT_CONNECTED\n"), std::nullopt);
    EXPECT_EQ(mediaPathsOf("ERROR:x\n/a.wav\n"), std::nullopt);
    EXPECT_EQ(mediaPathsOf("\nERROR:x\n"), std::nullopt);
}

} // namespace
} // namespace zuvo
