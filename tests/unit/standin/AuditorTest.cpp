#include "standin/Auditor.h"

#include <gmock/gmock.h>

using namespace zuvo;
using namespace zuvo::standin;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

MarkedLine used(double start, double end, std::string text) {
    return {start, end, true, std::move(text)};
}

MarkedLine unused(double start, double end, std::string text) {
    return {start, end, false, std::move(text)};
}

} // namespace

TEST(AuditPromptReader, readsTheShareAndEveryMarkedLine) {
    const auto request = readAuditPrompt("Below is the FULL transcript with [USED] and [UNUSED] markers\n"
                                         "[USED] [0.0s → 4.5s] I am Maren [laughs].\n"
                                         "[UNUSED] [4.5s → 9.0s] Yes.\n{\n    \"coveragePercent\": 12.5,\n");
    ASSERT_TRUE(request);
    EXPECT_EQ(request->coveragePercent, 12.5);
    ASSERT_THAT(request->lines, SizeIs(2));
    EXPECT_TRUE(request->lines[0].isUsed);
    EXPECT_EQ(request->lines[0].start, 0.0);
    EXPECT_EQ(request->lines[0].end, 4.5);
    EXPECT_EQ(request->lines[0].text, "I am Maren [laughs].");
    EXPECT_FALSE(request->lines[1].isUsed);
}

TEST(AuditPromptReader, aPromptWithoutShareOrLinesAsksForNoAudit) {
    EXPECT_FALSE(readAuditPrompt("[USED] [0.0s → 4.5s] I am Maren."));
    EXPECT_FALSE(readAuditPrompt("\"coveragePercent\": 12.5"));
    EXPECT_FALSE(readAuditPrompt("\"coveragePercent\": x\n[USED] [0.0s → 4.5s] I am Maren."));
    EXPECT_FALSE(readAuditPrompt("\"coveragePercent\": 1\n[USED] 0.0s → 4.5s I am Maren."));
}

TEST(JudgedCut, goldIsTheLongestOfWhatIsUnused) {
    const auto report =
        judgeCut({10.0,
                  {unused(0, 2, "A short line about nothing"), used(2, 40, "The longest of all, but used"),
                   unused(40, 52, "The winter that we lost the boat"), unused(52, 57, "Another line that nobody needs"),
                   unused(57, 80, "Yes."), unused(80, 84, "And a fourth one for good measure")}});
    ASSERT_THAT(report["buriedGold"], SizeIs(3));
    EXPECT_EQ(report["buriedGold"][0]["startTime"], 40.0);
    EXPECT_EQ(report["buriedGold"][0]["emotionalWeight"], 5);
    EXPECT_EQ(report["buriedGold"][1]["startTime"], 52.0);
    EXPECT_EQ(report["buriedGold"][1]["emotionalWeight"], 3);
    EXPECT_EQ(report["buriedGold"][2]["endTime"], 84.0);
}

TEST(JudgedCut, linesThatShareTwoTellingWordsSpeakOfTheSame) {
    const auto report = judgeCut({10.0,
                                  {used(0, 2, "That winter the harbour froze."), used(2, 4, "The harbour in winter"),
                                   used(4, 6, "The harbour."), unused(6, 8, "Winter came to the harbour")}});
    ASSERT_THAT(report["redundancies"], SizeIs(1));
    EXPECT_EQ(report["redundancies"][0]["secondStart"], 2.0);
    EXPECT_EQ(report["redundancies"][0]["topic"], "harbour, winter");
    ASSERT_THAT(report["alternates"], SizeIs(2));
    EXPECT_EQ(report["alternates"][1]["existingStart"], 2.0);
    EXPECT_EQ(report["alternates"][1]["alternateText"], "Winter came to the harbour");
}

TEST(JudgedCut, themesAreMissingIfNoUsedLineNamesThem) {
    const auto report = judgeCut({10.0,
                                  {used(0, 2, "The harbour."), unused(2, 4, "My mother sang at the harbour"),
                                   unused(4, 6, "Singing? My mother did.")}});
    EXPECT_THAT(report["themeGaps"], ElementsAre("mother", "singing"));
    EXPECT_EQ(report["coveragePercent"], 10.0);
    EXPECT_NEAR(report["confidenceScore"].get<double>(), 33.33, 0.01);
    EXPECT_EQ(report["summary"], "The cut uses 1 of 3 lines of the transcript.");
}

TEST(JudgedCut, aCutOfEverythingMissesNothing) {
    const auto report = judgeCut({100.0, {used(0, 2, "The harbour.")}});
    EXPECT_THAT(report["buriedGold"], IsEmpty());
    EXPECT_THAT(report["themeGaps"], IsEmpty());
    EXPECT_EQ(report["confidenceScore"], 100.0);
    ASSERT_THAT(report["usedSegments"], SizeIs(1));
    EXPECT_EQ(report["usedSegments"][0]["text"], "The harbour.");
}
