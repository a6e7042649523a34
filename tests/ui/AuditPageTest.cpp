#include "fakes/CoroutineTest.h"
#include "ui/LastPagesWindow.h"

#include <QColor>

using namespace zuvo;
using namespace zuvo::tests;

namespace {

class AuditWindow : public LastPagesWindow {
protected:
    /// The outcome of an audit, in a window that is high enough for all of it.
    void showAudit(const AuditReport& report) {
        launch();
        driver->resize(1100, 1700);
        givenAudit(report);
        show(MineStep::review, QStringLiteral("coverageCard"));
    }
    [[nodiscard]] QString textOf(const QString& name) {
        const auto* item = driver->find(name);
        return item == nullptr ? QString() : item->property("text").toString();
    }
    [[nodiscard]] bool tabTo(const QString& name) {
        constexpr int mostStops = 40;
        for (int stop = 0; stop < mostStops && driver->focusedName() != name; ++stop)
            driver->press(Qt::Key_Tab);
        return driver->focusedName() == name;
    }
};

} // namespace

TEST_F(AuditWindow, aReportWithEmptyListsShowsOnlyTheHeaderTheTwoCardsAndTheWayBack) {
    showAudit({});
    for (const auto* name : {"coverageCard", "confidenceCard", "startOverButton"})
        EXPECT_TRUE(driver->shows(QString::fromUtf8(name))) << name;
    EXPECT_TRUE(driver->showsText(QStringLiteral("Audit Complete")));
    for (const auto* name :
         {"buriedGoldSection", "redundanciesSection", "alternatesSection", "themeGapsSection", "addMomentsButton"})
        EXPECT_FALSE(driver->shows(QString::fromUtf8(name))) << name;
    EXPECT_TRUE(driver->showsText(QStringLiteral("100.0%")));
}

TEST_F(AuditWindow, showsWhatTheAuditFound) {
    showAudit(lighthouseAudit());
    for (const auto* text :
         {"37.4%", "14 clips", "62.6%", "72/100", "Good coverage — some significant moments unused", "3 moments",
          "[2:05 → 2:31]", "25s", "Waiting for the boat", "[21:15 → 21:41]", "[55:08 → 55:27]", "Current", "Better",
          "[47:57 → 48:10]", "[50:15 → 50:40]", "What automation took from the village"})
        EXPECT_TRUE(driver->showsText(QString::fromUtf8(text))) << text;
    const auto* bar = driver->find(QStringLiteral("coverageBar"));
    ASSERT_NE(bar, nullptr);
    const auto* fill = driver->find(QStringLiteral("shareFill"));
    ASSERT_NE(fill, nullptr);
    EXPECT_LT(fill->width(), bar->width());
}

TEST_F(AuditWindow, aMomentIsOpenedSelectedAndDeselectedByTheMouse) {
    showAudit(lighthouseAudit());
    EXPECT_FALSE(driver->shows(QStringLiteral("goldCard1Select")));
    driver->click(QStringLiteral("goldCard1"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("goldCard1Select")));
    runEventLoop(std::chrono::milliseconds(300));
    EXPECT_EQ(textOf(QStringLiteral("goldCard1Select")), QStringLiteral("Select"));
    driver->click(QStringLiteral("goldCard1Select"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("addMomentsButton")));
    EXPECT_EQ(textOf(QStringLiteral("addMomentsButton")), QStringLiteral("Add 1 moments to timeline"));
    EXPECT_EQ(textOf(QStringLiteral("goldCard1Select")), QStringLiteral("Selected"));
    driver->click(QStringLiteral("goldCard1Select"));
    EXPECT_TRUE(driver->waitUntilGone(QStringLiteral("addMomentsButton")));
    driver->click(QStringLiteral("goldCard0"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("goldCard0Select")));
    EXPECT_FALSE(driver->shows(QStringLiteral("goldCard1Select")));
}

TEST_F(AuditWindow, aMomentIsOpenedAndSelectedByTheKeyboard) {
    showAudit(lighthouseAudit());
    ASSERT_TRUE(tabTo(QStringLiteral("goldCard0")));
    driver->press(Qt::Key_Return);
    ASSERT_TRUE(driver->waitFor(QStringLiteral("goldCard0Select")));
    ASSERT_TRUE(tabTo(QStringLiteral("goldCard0Select")));
    driver->press(Qt::Key_Space);
    ASSERT_TRUE(driver->waitFor(QStringLiteral("addMomentsButton")));
    ASSERT_TRUE(tabTo(QStringLiteral("addMomentsButton")));
    givenBuildPrints("SUCCESS:11/11 clips appended");
    driver->press(Qt::Key_Return);
    EXPECT_TRUE(waitUntil([this] { return pipeline().buildResult().has_value(); }));
    EXPECT_EQ(flow().currentStep(), MineStep::review);
    ASSERT_TRUE(tabTo(QStringLiteral("startOverButton")));
    driver->press(Qt::Key_Space);
    EXPECT_EQ(flow().currentStep(), MineStep::setup);
}

TEST_F(AuditWindow, aStepBackAndForwardClearsSelectionAndExpansion) {
    showAudit(lighthouseAudit());
    driver->click(QStringLiteral("goldCard0"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("goldCard0Select")));
    runEventLoop(std::chrono::milliseconds(300));
    driver->click(QStringLiteral("goldCard0Select"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("addMomentsButton")));
    flow().advanceTo(MineStep::setup);
    ASSERT_TRUE(driver->waitUntilGone(QStringLiteral("coverageCard")));
    show(MineStep::review, QStringLiteral("coverageCard"));
    EXPECT_FALSE(driver->shows(QStringLiteral("addMomentsButton")));
    EXPECT_FALSE(driver->shows(QStringLiteral("goldCard0Select")));
}

TEST_F(AuditWindow, anotherTimelineIsAuditedByTheMouse) {
    showAudit(lighthouseAudit());
    driver->click(QStringLiteral("startOverButton"));
    EXPECT_EQ(flow().currentStep(), MineStep::setup);
}
