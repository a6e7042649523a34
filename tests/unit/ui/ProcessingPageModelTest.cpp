#include "ui/ProcessingPageModel.h"

#include "unit/ui/FlowModelFixture.h"

#include <QAbstractItemModelTester>
#include <QClipboard>
#include <QGuiApplication>
#include <map>

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;

namespace {

/// Timers that tick when the test says so.
class HandTimers {
public:
    [[nodiscard]] StartTimer starter() {
        return [this](std::chrono::milliseconds interval, std::function<void()> tick) {
            m_ticks[interval] = std::move(tick);
            return std::make_unique<QObject>();
        };
    }
    void tick(std::chrono::milliseconds interval) { m_ticks.at(interval)(); }
    [[nodiscard]] std::vector<int> intervals() const {
        std::vector<int> all;
        for (const auto& [interval, tick] : m_ticks)
            all.push_back(static_cast<int>(interval.count()));
        return all;
    }

private:
    std::map<std::chrono::milliseconds, std::function<void()>> m_ticks;
};

constexpr std::chrono::milliseconds dotInterval{500};
constexpr std::chrono::milliseconds factInterval{5000};

class ProcessingPage : public FlowModelFixture {
protected:
    ProcessingPage() { page.setFlow(flow.get()); }

    /// Lines of the log: each probe of a file that is none is one, after a heading.
    void givenLines(int failedProbes) {
        std::vector<std::string> paths;
        for (int i = 0; i < failedProbes; ++i)
            paths.push_back("/none/file" + std::to_string(i) + ".wav");
        ended(pipeline->probeAllMedia(std::move(paths)));
    }

    [[nodiscard]] std::vector<std::string> shown(const char* role) {
        auto& log = *page.log();
        const auto number = log.roleNames().key(role, -1);
        EXPECT_NE(number, -1) << role;
        std::vector<std::string> texts;
        for (int row = 0; row < log.rowCount(); ++row)
            texts.push_back(log.data(log.index(row), number).toString().toStdString());
        return texts;
    }

    HandTimers timers;
    ProcessingPageModel page{timers.starter()};
    QAbstractItemModelTester logTester{page.log(), QAbstractItemModelTester::FailureReportingMode::Fatal};
};

} // namespace

TEST_F(ProcessingPage, withAnEmptyLogThereAreNoRows) {
    EXPECT_EQ(page.log()->rowCount(), 0);
    EXPECT_EQ(page.log()->plainText(0, 5), QString());
}

TEST(ProcessingPageLog, aColourThatIsNotOneOfTheFourNamesIsMuted) {
    const std::map<const char*, const char*> cases = {{"accent", "accent"}, {"green", "green"}, {"blue", "blue"},
                                                      {"dim", "dim"},       {"muted", "muted"}, {"", "muted"},
                                                      {"Green", "muted"},   {"red", "muted"}};
    for (const auto& [name, color] : cases)
        EXPECT_EQ(LogLinesModel::logColor(name), QLatin1String(color)) << name;
}

TEST_F(ProcessingPage, afterTheTenthFactTheFirstComesAgain) {
    EXPECT_EQ(page.funFact(), QStringLiteral("Every interview has a story waiting to be found"));
    for (int i = 0; i < 9; ++i)
        timers.tick(factInterval);
    EXPECT_EQ(page.currentFact(), 9U);
    EXPECT_EQ(page.funFact(), QStringLiteral("Zuvo. Into the mine we go."));
    timers.tick(factInterval);
    EXPECT_EQ(page.currentFact(), 0U);
}

TEST_F(ProcessingPage, aProgressOfOneHalfShowsThatNumberOfCredits) {
    // Half of the way: the energy of the sound is measured at 0.5.
    std::vector<std::string> seen;
    QObject::connect(&page, &ProcessingPageModel::progressChanged, &page,
                     [this, &seen] { seen.push_back(page.creditsUsed().toStdString()); });
    EXPECT_EQ(page.creditsUsed(), QStringLiteral("0.0 credits used"));
    const auto footage = givenFootage();
    givenServicesAnswer();
    mine(footage);
    EXPECT_EQ(page.creditsUsed(), QStringLiteral("1.0 credits used"));
    EXPECT_THAT(seen, testing::Contains("0.5 credits used"));
}

TEST_F(ProcessingPage, theDotsGoFromNoneToThreeAndBegin) {
    EXPECT_THAT(timers.intervals(), ElementsAre(500, 5000));
    std::vector<std::string> headings;
    for (int i = 0; i < 5; ++i) {
        headings.push_back(page.heading().toStdString());
        timers.tick(dotInterval);
    }
    EXPECT_THAT(headings,
                ElementsAre("Descending into the mine", "Descending into the mine.", "Descending into the mine..",
                            "Descending into the mine...", "Descending into the mine"));
}

TEST_F(ProcessingPage, theStageIsThePipelinesAndAFailureIsToldWithIt) {
    EXPECT_EQ(page.stage(), QStringLiteral("Idle"));
    EXPECT_FALSE(page.hasError());
    services->then(401, "no such key");
    mine({givenFile("A.wav", "20.0")});
    EXPECT_EQ(page.stage(), QStringLiteral("Error"));
    EXPECT_TRUE(page.hasError());
    EXPECT_EQ(page.errorMessage().toStdString(), *pipeline->errorMessage());
}

TEST_F(ProcessingPage, everyLineIsARowAndOneMoreIsOneMore) {
    givenLines(2);
    EXPECT_THAT(shown("line"), ElementsAre("📋 Probing 2 source files...", "  ⚠ Failed to probe file0.wav",
                                           "  ⚠ Failed to probe file1.wav"));
    EXPECT_THAT(shown("colorName"), ElementsAre("muted", "accent", "accent"));
    EXPECT_THAT(shown("timestamp"), ElementsAre("17:36", "17:36", "17:36"));
    int inserted = 0;
    QObject::connect(page.log(), &LogLinesModel::rowsInserted, &page,
                     [&inserted](const QModelIndex&, int first, int last) { inserted += last - first + 1; });
    givenLines(1);
    EXPECT_EQ(inserted, 2);
    EXPECT_EQ(page.log()->rowCount(), 5);
}

TEST_F(ProcessingPage, aResetEmptiesTheLog) {
    givenLines(3);
    pipeline->reset();
    EXPECT_EQ(page.log()->rowCount(), 0);
    givenLines(1);
    EXPECT_EQ(page.log()->rowCount(), 2);
}

TEST_F(ProcessingPage, aPageThatComesLaterShowsTheWholeLog) {
    givenLines(3);
    ProcessingPageModel later(timers.starter());
    later.setFlow(flow.get());
    EXPECT_EQ(later.log()->rowCount(), 4);
}

TEST_F(ProcessingPage, controlCharactersAreShownAsSuch) {
    ended(pipeline->probeAllMedia({"/none/a\x1b[31m\x07.wav"}));
    EXPECT_EQ(shown("line").back(), "  ⚠ Failed to probe a\uFFFD[31m\uFFFD.wav");
}

TEST_F(ProcessingPage, chosenLinesAreCopiedWhole) {
    givenLines(3);
    page.copyLines(2, 1);
    EXPECT_EQ(QGuiApplication::clipboard()->text(),
              QStringLiteral("17:36   ⚠ Failed to probe file0.wav\n17:36   ⚠ Failed to probe file1.wav"));
    page.copyLines(-1, -1);
    EXPECT_EQ(QGuiApplication::clipboard()->text().count(QLatin1Char('\n')), 1);
    page.copyLines(3, 99);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("17:36   ⚠ Failed to probe file2.wav"));
}

TEST_F(ProcessingPage, cancelLeadsBackToTheStyleWithThePipelinePutBack) {
    flow->advanceTo(MineStep::processing);
    givenLines(1);
    page.cancel();
    EXPECT_EQ(flow->currentStep(), MineStep::style);
    EXPECT_EQ(page.log()->rowCount(), 0);
}

TEST_F(ProcessingPage, aPageThatIsOnItsWayOutCancelsNothing) {
    flow->advanceTo(MineStep::review);
    page.cancel();
    EXPECT_EQ(flow->currentStep(), MineStep::review);
}

TEST_F(ProcessingPage, theTimersOfTheMachineTick) {
    ProcessingPageModel real;
    EXPECT_TRUE(waitUntil([&real] { return real.dots() == QStringLiteral("."); }));
}
