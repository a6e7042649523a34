#include "ui/AuditPageModel.h"

#include "LastPagesFixture.h"

#include <limits>

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

AuditReport fullReport() {
    AuditReport report;
    report.coveragePercent = 37.44;
    report.usedSegments = {{0.0, 1.0, ""}, {2.0, 3.0, ""}};
    report.buriedGold = {{125.4, 151.2, "The light", "His own words", 5}, {2602.0, 2631.9, "The lamp", "Respect", 0}};
    report.redundancies = {{1275.0, 1301.9, 3308.0, 3327.0, "Waiting for the boat"}};
    report.alternates = {{2877.0, 2890.0, 3015.0, 3040.0, "Said once", "No false start"}};
    report.themeGaps = {"The grandfather", "The village"};
    report.confidenceScore = 72.9;
    report.summary = "The cut tells the storm well.";
    return report;
}

class AuditPage : public LastPagesFixture {
protected:
    void show(const AuditReport& report) {
        givenReport(report);
        page = std::make_unique<AuditPageModel>();
        page->setFlow(flow.get());
    }
    void showScore(double score) {
        AuditReport report;
        report.confidenceScore = score;
        show(report);
    }
    void showCoverage(double percent) {
        AuditReport report;
        report.coveragePercent = percent;
        show(report);
    }
    [[nodiscard]] std::vector<std::string> column(const QVariantList& rows, const char* key) const {
        std::vector<std::string> texts;
        for (const auto& row : rows)
            texts.push_back(row.toMap().value(QString::fromUtf8(key)).toString().toStdString());
        return texts;
    }

    std::unique_ptr<AuditPageModel> page;
};

} // namespace

TEST_F(AuditPage, aScoreOfExactlyEightyIsExcellentAndOfExactlySixtyIsGood) {
    struct Row {
        double score;
        const char* message;
        const char* verdict;
        const char* text;
    };
    const std::vector<Row> rows = {
        {100.0, "Excellent coverage — only minor gems missing", "excellent", "100/100"},
        {80.0, "Excellent coverage — only minor gems missing", "excellent", "80/100"},
        {79.9, "Good coverage — some significant moments unused", "good", "79/100"},
        {60.0, "Good coverage — some significant moments unused", "good", "60/100"},
        {59.9, "Major gaps — review buried gold carefully", "majorGaps", "59/100"},
        {0.0, "Major gaps — review buried gold carefully", "majorGaps", "0/100"},
    };
    for (const auto& row : rows) {
        showScore(row.score);
        EXPECT_EQ(page->confidenceText().toStdString(), row.message) << row.score;
        EXPECT_EQ(page->verdict().toStdString(), row.verdict) << row.score;
        EXPECT_EQ(page->confidence().toStdString(), row.text) << row.score;
        EXPECT_DOUBLE_EQ(page->confidenceShare(), row.score / 100.0);
    }
}

TEST_F(AuditPage, aFullyUsedInterviewShowsNothingUnused) {
    showCoverage(100.0);
    EXPECT_EQ(page->coverage(), QStringLiteral("100.0%"));
    EXPECT_EQ(page->unused(), QStringLiteral("0.0%"));
    EXPECT_EQ(page->coverageShare(), 1.0);
}

TEST_F(AuditPage, coverageShowsAsItIsAndItsBarStaysWithinTheTrack) {
    struct Row {
        double percent;
        const char* used;
        const char* unused;
        double share;
    };
    const std::vector<Row> rows = {
        {0.0, "0.0%", "100.0%", 0.0},
        {37.44, "37.4%", "62.6%", 0.3744},
        {112.5, "112.5%", "-12.5%", 1.0},
        {-5.0, "-5.0%", "105.0%", 0.0},
    };
    for (const auto& row : rows) {
        showCoverage(row.percent);
        EXPECT_EQ(page->coverage().toStdString(), row.used);
        EXPECT_EQ(page->unused().toStdString(), row.unused);
        EXPECT_DOUBLE_EQ(page->coverageShare(), row.share);
    }
}

TEST_F(AuditPage, aReportWithEmptyListsShowsNoSections) {
    show({});
    EXPECT_THAT(page->buriedGold(), IsEmpty());
    EXPECT_THAT(page->redundancies(), IsEmpty());
    EXPECT_THAT(page->alternates(), IsEmpty());
    EXPECT_THAT(page->themeGaps(), IsEmpty());
    EXPECT_FALSE(page->canAdd());
    EXPECT_EQ(page->usedClips(), QStringLiteral("0 clips"));
}

TEST_F(AuditPage, tellsWhatTheAuditFound) {
    show(fullReport());
    EXPECT_EQ(page->summary(), QStringLiteral("The cut tells the storm well."));
    EXPECT_EQ(page->usedClips(), QStringLiteral("2 clips"));
    EXPECT_EQ(page->momentCount(), QStringLiteral("2 moments"));
    EXPECT_THAT(column(page->buriedGold(), "text"), ElementsAre("The light", "The lamp"));
    EXPECT_THAT(column(page->buriedGold(), "range"), ElementsAre("[2:05 → 2:31]", "[43:22 → 43:51]"));
    EXPECT_THAT(column(page->buriedGold(), "length"), ElementsAre("25s", "29s"));
    EXPECT_THAT(column(page->buriedGold(), "stars"), ElementsAre("5", "0"));
    EXPECT_THAT(column(page->buriedGold(), "reason"), ElementsAre("His own words", "Respect"));
    EXPECT_THAT(column(page->redundancies(), "topic"), ElementsAre("Waiting for the boat"));
    EXPECT_THAT(column(page->redundancies(), "first"), ElementsAre("[21:15 → 21:41]"));
    EXPECT_THAT(column(page->redundancies(), "second"), ElementsAre("[55:08 → 55:27]"));
    EXPECT_THAT(column(page->alternates(), "current"), ElementsAre("[47:57 → 48:10]"));
    EXPECT_THAT(column(page->alternates(), "better"), ElementsAre("[50:15 → 50:40]"));
    EXPECT_THAT(column(page->alternates(), "text"), ElementsAre("Said once"));
    EXPECT_THAT(column(page->alternates(), "reason"), ElementsAre("No false start"));
    EXPECT_EQ(page->themeGaps(), QStringList({QStringLiteral("The grandfather"), QStringLiteral("The village")}));
}

TEST_F(AuditPage, aReportThatAsksForABillionStarsGetsACardFull) {
    auto report = fullReport();
    report.buriedGold[0].emotionalWeight = std::numeric_limits<std::int64_t>::max();
    report.buriedGold[1].emotionalWeight = -3;
    show(report);
    EXPECT_THAT(column(page->buriedGold(), "stars"), ElementsAre("50", "0"));
}

TEST_F(AuditPage, aTapOpensAMomentAndClosesTheOther) {
    show(fullReport());
    const auto ids = column(page->buriedGold(), "id");
    EXPECT_THAT(ids, ElementsAre("125.4-151.2", "2602.0-2631.9"));
    EXPECT_TRUE(page->expandedGold().isEmpty());
    page->toggleExpanded(QString::fromStdString(ids[0]));
    EXPECT_EQ(page->expandedGold().toStdString(), ids[0]);
    page->toggleExpanded(QString::fromStdString(ids[1]));
    EXPECT_EQ(page->expandedGold().toStdString(), ids[1]);
    page->toggleExpanded(QString::fromStdString(ids[1]));
    EXPECT_TRUE(page->expandedGold().isEmpty());
}

TEST_F(AuditPage, selectingAndDeselectingTheOnlyMomentRemovesTheAddButton) {
    show(fullReport());
    int changes = 0;
    QObject::connect(page.get(), &AuditPageModel::selectedMomentsChanged, [&changes] { ++changes; });
    const auto id = QStringLiteral("125.4-151.2");
    page->toggleSelected(id);
    EXPECT_TRUE(page->canAdd());
    EXPECT_EQ(page->addText(), QStringLiteral("Add 1 moments to timeline"));
    page->toggleSelected(id);
    EXPECT_FALSE(page->canAdd());
    EXPECT_EQ(changes, 2);
}

TEST_F(AuditPage, theButtonCountsWhatIsSelected) {
    show(fullReport());
    page->toggleSelected(QStringLiteral("125.4-151.2"));
    page->toggleSelected(QStringLiteral("2602.0-2631.9"));
    EXPECT_EQ(page->addText(), QStringLiteral("Add 2 moments to timeline"));
}

TEST_F(AuditPage, addingBuildsTheSegmentsFileAsItLies) {
    show(fullReport());
    givenBuildPrints("SUCCESS:4/4 clips appended");
    const auto before = read(cachePath("segments.json"));
    page->toggleSelected(QStringLiteral("125.4-151.2"));
    const auto step = flow->currentStep();
    page->rebuild();
    EXPECT_TRUE(waitUntil([this] { return pipeline->buildResult().has_value(); }));
    EXPECT_EQ(pipeline->buildResult(), "✓ 4/4 clips appended");
    EXPECT_EQ(read(cachePath("segments.json")), before);
    EXPECT_EQ(flow->currentStep(), step);
}

TEST_F(AuditPage, startingOverGoesToTheSetup) {
    show(fullReport());
    flow->advanceTo(MineStep::review);
    page->startOver();
    EXPECT_EQ(flow->currentStep(), MineStep::setup);
}

TEST_F(AuditPage, aNewPageHasNothingSelectedAndNothingOpen) {
    show(fullReport());
    page->toggleSelected(QStringLiteral("125.4-151.2"));
    page->toggleExpanded(QStringLiteral("125.4-151.2"));
    page = std::make_unique<AuditPageModel>();
    page->setFlow(flow.get());
    EXPECT_FALSE(page->canAdd());
    EXPECT_TRUE(page->expandedGold().isEmpty());
}

TEST_F(AuditPage, withoutAFlowThereIsNothingToDo) {
    show(fullReport());
    flow.reset();
    page->rebuild();
    page->startOver();
    EXPECT_EQ(page->momentCount(), QStringLiteral("2 moments"));
    EXPECT_FALSE(pipeline->buildResult());
}
