#include "ui/ShellFixture.h"

#include <random>

// The guided flow under the hands of a user: which page stands, and how pages come and go.

using namespace zuvo;
using namespace zuvo::tests;

namespace {

class FlowTest : public ShellFixture {
protected:
    void launchFlow() {
        launchSignedIn();
        ASSERT_TRUE(driver->waitFor(QStringLiteral("emptyDropZone")));
        stack = driver->find(QStringLiteral("pageStack"));
        ASSERT_NE(stack, nullptr);
    }

    [[nodiscard]] MineStep step() { return world.page<MineViewModel>()->currentStep(); }
    [[nodiscard]] QString stepName(int number) const { return QStringLiteral("step") + QString::number(number); }
    /// The pages in the flow's area, the one that came last at the end.
    [[nodiscard]] QList<QQuickItem*> pages() const { return stack->childItems(); }
    [[nodiscard]] bool waitForOnePage() {
        return waitUntil([this] {
            return pages().size() == 1 && pages().constFirst()->opacity() == 1.0 && pages().constFirst()->x() == 0.0 &&
                   pages().constFirst()->scale() == 1.0;
        });
    }

    QQuickItem* stack = nullptr;
};

/// Where two pages stood while one took the other's place.
struct Sample {
    double leavingX, leavingOpacity, leavingScale;
    double enteringX, enteringOpacity, enteringScale;
};

class TransitionTest : public FlowTest {
protected:
    /// Goes to that step and watches until one page stands.
    std::vector<Sample> watch(MineStep to) {
        std::vector<Sample> samples;
        EXPECT_EQ(stack->property("duration").toInt(), 350);
        // Slow enough to be seen on a machine that has much else to do.
        stack->setProperty("duration", 1500);
        world.page<MineViewModel>()->advanceTo(to);
        const bool hasEnded = waitUntil([this, &samples] {
            const auto now = pages();
            if (now.size() == 2) {
                samples.push_back(
                    {now[0]->x(), now[0]->opacity(), now[0]->scale(), now[1]->x(), now[1]->opacity(), now[1]->scale()});
            }
            return now.size() == 1;
        });
        EXPECT_TRUE(hasEnded);
        EXPECT_TRUE(waitForOnePage());
        stack->setProperty("duration", 350);
        EXPECT_GE(samples.size(), 4U) << "the change was not seen";
        return samples;
    }

    /// Halfway: both pages are on their way.
    static bool isOnItsWay(double opacity) { return opacity > 0.05 && opacity < 0.95; }

    void expectSlide(const std::vector<Sample>& samples) const {
        bool wasSeen = false;
        for (std::size_t i = 0; i < samples.size(); ++i) {
            const auto& now = samples[i];
            EXPECT_LE(now.leavingX, 0.0);
            EXPECT_GE(now.enteringX, 0.0);
            EXPECT_EQ(now.leavingScale, 1.0);
            EXPECT_EQ(now.enteringScale, 1.0);
            if (i > 0) {
                EXPECT_LE(now.leavingX, samples[i - 1].leavingX);
                EXPECT_LE(now.enteringX, samples[i - 1].enteringX);
                EXPECT_LE(now.leavingOpacity, samples[i - 1].leavingOpacity);
                EXPECT_GE(now.enteringOpacity, samples[i - 1].enteringOpacity);
            }
            wasSeen = wasSeen || (isOnItsWay(now.leavingOpacity) && isOnItsWay(now.enteringOpacity) &&
                                  now.leavingX < 0.0 && now.enteringX > 0.0);
        }
        EXPECT_TRUE(wasSeen);
        EXPECT_GT(samples.front().enteringX, stack->width() / 2) << "it comes in from the right edge";
        EXPECT_LT(samples.back().leavingX, -stack->width() / 2) << "it goes out at the left edge";
    }
};

} // namespace

TEST_F(FlowTest, theButtonsLeadThroughTheSteps) {
    launchFlow();
    driver->resize(1100, 1400); // so that each page shows its buttons without being scrolled
    world.page<MineViewModel>()->setupNext();
    ASSERT_TRUE(waitForOnePage());
    driver->click(QStringLiteral("backButton"));
    EXPECT_EQ(step(), MineStep::setup);
    ASSERT_TRUE(waitForOnePage());
    world.page<MineViewModel>()->setupNext();
    ASSERT_TRUE(waitForOnePage());
    driver->click(QStringLiteral("actionButton"));
    EXPECT_EQ(step(), MineStep::processing);
    ASSERT_TRUE(waitForOnePage());
}

TEST_F(FlowTest, theStepsAreNumberedAndNamedInTheirOrder) {
    launchFlow();
    double last = 0;
    const std::array labels = {"Into the Mine", "The Lantern", "The Dig", "The Discovery", "Daylight"};
    for (int number = 0; number < 5; ++number) {
        const auto* item = driver->find(stepName(number));
        ASSERT_NE(item, nullptr);
        EXPECT_EQ(item->property("text").toString().toStdString(), labels.at(static_cast<std::size_t>(number)));
        EXPECT_GT(item->mapToScene({0, 0}).x(), last);
        last = item->mapToScene({0, 0}).x();
        EXPECT_EQ(item->opacity(), number == 0 ? 1.0 : 0.6);
    }
}

TEST_F(FlowTest, theConnectorsHaveRoomInTheNarrowestWindow) {
    launchFlow();
    driver->resize(900, 600);
    for (const auto step : {MineStep::setup, MineStep::review, MineStep::done}) {
        world.page<MineViewModel>()->advanceTo(step);
        for (int number = 0; number < 4; ++number) {
            const auto* item = driver->find(stepName(number));
            const auto end = item->mapToScene({item->width(), 0}).x();
            const auto next = driver->find(stepName(number + 1))->mapToScene({0, 0}).x();
            constexpr double dots = 5 * 3 + 4 * 4;
            EXPECT_GE(next - end, dots + 2 * 2.25) << number;
        }
        EXPECT_GE(driver->find(stepName(0))->mapToScene({0, 0}).x(), 220 + 2);
        const auto* last = driver->find(stepName(4));
        EXPECT_LE(last->mapToScene({last->width(), 0}).x(), 900 - 1);
    }
}

TEST_F(FlowTest, aTapOnAnEarlierStepGoesBackToIt) {
    launchFlow();
    for (const int earlier : {3, 2, 1, 0}) {
        world.page<MineViewModel>()->advanceTo(MineStep::done);
        driver->click(stepName(earlier));
        EXPECT_EQ(static_cast<int>(step()), earlier);
    }
    EXPECT_TRUE(waitForOnePage());
}

TEST_F(FlowTest, theKeyboardGoesBackToAnEarlierStep) {
    launchFlow();
    world.page<MineViewModel>()->advanceTo(MineStep::review);
    ASSERT_TRUE(waitForOnePage());
    ASSERT_TRUE(driver->tabTo(stepName(1)));
    driver->press(Qt::Key_Return);
    EXPECT_EQ(step(), MineStep::style);
}

TEST_F(FlowTest, aTapOnTheCurrentStepOrOneAheadDoesNothing) {
    launchFlow();
    world.page<MineViewModel>()->advanceTo(MineStep::processing);
    ASSERT_TRUE(waitForOnePage());
    for (const int number : {2, 3, 4}) {
        driver->click(stepName(number));
        EXPECT_EQ(step(), MineStep::processing);
    }
    EXPECT_EQ(pages().size(), 1);
}

TEST_F(FlowTest, theKeyboardReachesOnlyStepsThatLeadBack) {
    launchFlow();
    world.page<MineViewModel>()->advanceTo(MineStep::processing);
    ASSERT_TRUE(waitForOnePage());
    EXPECT_TRUE(driver->tabTo(stepName(0)));
    EXPECT_TRUE(driver->tabTo(stepName(1)));
    for (const int number : {2, 3, 4})
        EXPECT_FALSE(driver->tabTo(stepName(number))) << number;
}

TEST_F(FlowTest, anAuditWithoutAReportSaysSo) {
    launchFlow();
    world.page<MineViewModel>()->setSelectedMode(MiningMode::audit);
    world.page<MineViewModel>()->advanceTo(MineStep::review);
    EXPECT_TRUE(driver->waitForText(QStringLiteral("No audit report available")));
    driver->click(stepName(0));
    EXPECT_EQ(step(), MineStep::setup);
}

TEST_F(TransitionTest, aPageForwardComesFromTheRightAndTheOldOneLeavesToTheLeft) {
    launchFlow();
    ASSERT_TRUE(waitForOnePage());
    expectSlide(watch(MineStep::style));
}

TEST_F(TransitionTest, goingBackSlidesTheSameWay) {
    launchFlow();
    world.page<MineViewModel>()->advanceTo(MineStep::processing);
    ASSERT_TRUE(waitForOnePage());
    expectSlide(watch(MineStep::style));
}

TEST_F(TransitionTest, daylightGrowsWhereItStands) {
    launchFlow();
    world.page<MineViewModel>()->advanceTo(MineStep::review);
    ASSERT_TRUE(waitForOnePage());
    const auto samples = watch(MineStep::done);
    for (const auto& now : samples) {
        EXPECT_EQ(now.enteringX, 0.0);
        EXPECT_GE(now.enteringScale, 0.8);
        EXPECT_LE(now.enteringScale, 1.0);
        EXPECT_LE(now.leavingX, 0.0);
        EXPECT_EQ(now.leavingScale, 1.0);
    }
    EXPECT_LT(samples.front().enteringScale, 0.9);
    EXPECT_LT(samples.back().leavingX, -stack->width() / 2);
}

TEST_F(TransitionTest, daylightShrinksWhereItStands) {
    launchFlow();
    world.page<MineViewModel>()->advanceTo(MineStep::done);
    ASSERT_TRUE(waitForOnePage());
    const auto samples = watch(MineStep::review);
    for (const auto& now : samples) {
        EXPECT_EQ(now.leavingX, 0.0);
        EXPECT_GE(now.leavingScale, 0.8);
        EXPECT_LE(now.leavingScale, 1.0);
        EXPECT_GE(now.enteringX, 0.0);
        EXPECT_EQ(now.enteringScale, 1.0);
    }
    EXPECT_LT(samples.back().leavingScale, 0.9);
}

TEST_F(FlowTest, aPageThatLeavesTakesNoClicks) {
    launchFlow();
    auto* flow = world.page<MineViewModel>();
    flow->advanceTo(MineStep::style);
    ASSERT_TRUE(waitForOnePage());
    const auto* button = driver->find(QStringLiteral("backButton"));
    const auto place = button->mapToScene({button->width() / 2, button->height() / 2}).toPoint();
    flow->advanceTo(MineStep::review);
    driver->click(place);
    EXPECT_EQ(step(), MineStep::review);
}

TEST_F(FlowTest, thePageThatHasComeHasTheKeyboard) {
    launchFlow();
    world.page<MineViewModel>()->advanceTo(MineStep::done);
    ASSERT_TRUE(waitForOnePage());
    world.page<MineViewModel>()->advanceTo(MineStep::review);
    ASSERT_TRUE(waitForOnePage());
    const auto* focused = driver->window().activeFocusItem();
    ASSERT_NE(focused, nullptr);
    EXPECT_TRUE(pages().constFirst()->isAncestorOf(focused));
}

TEST_F(FlowTest, afterATapOnAStepThePageHasTheKeyboard) {
    launchFlow();
    world.page<MineViewModel>()->advanceTo(MineStep::done);
    ASSERT_TRUE(waitForOnePage());
    driver->click(stepName(3));
    ASSERT_TRUE(waitForOnePage());
    const auto* focused = driver->window().activeFocusItem();
    ASSERT_NE(focused, nullptr);
    EXPECT_TRUE(pages().constFirst()->isAncestorOf(focused)) << focused->objectName().toStdString();
}

TEST_F(FlowTest, aStormOfClicksLeavesOnePageAndNothingBroken) {
    launchFlow();
    std::mt19937 chance(20240917);
    const QStringList names = {
        QStringLiteral("step0"),      QStringLiteral("step1"),        QStringLiteral("step2"),
        QStringLiteral("step3"),      QStringLiteral("step4"),        QStringLiteral("actionButton"),
        QStringLiteral("backButton"), QStringLiteral("cancelButton"), QStringLiteral("tab0"),
        QStringLiteral("tab1"),       QStringLiteral("tab2"),         QStringLiteral("tab1")};
    for (int clicks = 0; clicks < 200; ++clicks) {
        // Steps ahead cannot be clicked to: now and then the flow goes there by itself.
        if (auto* flow = world.page<MineViewModel>(); flow != nullptr && chance() % 4 == 0)
            flow->advanceTo(allMineSteps.at(chance() % allMineSteps.size()));
        const auto& name = names.at(static_cast<qsizetype>(chance() % static_cast<unsigned>(names.size())));
        // What is still on its way in may lie outside of the window.
        const auto* item = driver->find(name);
        if (item != nullptr && item->mapToScene({item->width() / 2, 0}).x() < driver->window().width())
            driver->click(name);
        runEventLoop(std::chrono::milliseconds(chance() % 40));
    }
    driver->click(QStringLiteral("tab0"));
    driver->click(QStringLiteral("tab1"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("pageStack")));
    stack = driver->find(QStringLiteral("pageStack"));
    EXPECT_TRUE(waitForOnePage());
    world.page<MineViewModel>()->advanceTo(MineStep::done);
    world.page<MineViewModel>()->advanceTo(MineStep::style);
    world.page<MineViewModel>()->advanceTo(MineStep::done);
    EXPECT_TRUE(waitForOnePage());
    EXPECT_EQ(step(), MineStep::done);
}
