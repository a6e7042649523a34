#include "fakes/CoroutineTest.h"
#include "ui/LastPagesWindow.h"

#include <QColor>
#include <QQmlComponent>
#include <QQuickView>

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
    /// Whether the card has come to rest so far open.
    [[nodiscard]] bool waitUntilOpenBy(double share, const QString& card) {
        return waitUntil([this, share, &card] {
            const auto* item = driver->find(card);
            return item != nullptr && item->property("openness").toDouble() == share;
        });
    }
    /// How wide the bar of that name is filled; 0 if nothing of it is.
    [[nodiscard]] double filledOf(const QString& bar) {
        for (const auto* item : driver->find(bar)->childItems()) {
            if (item->objectName() == QStringLiteral("shareFill"))
                return item->isVisible() ? item->width() : 0.0;
        }
        ADD_FAILURE() << bar.toStdString() << " has no fill";
        return 0.0;
    }
};

/// A moment's card on a ground of one colour.
class GoldCardLook : public testing::Test {
protected:
    void SetUp() override {
        prepareEngine(*view.engine());
        QQmlComponent component(view.engine());
        component.setData("import QtQuick\nimport Zuvo\n"
                          "Rectangle { width: 400; height: 200; GoldCard { objectName: \"card\"; x: 40; y: 40; "
                          "width: 320; quote: \"Light\"; range: \"[0:00]\"; length: \"1s\"; reason: \"Why\" } }",
                          QUrl());
        auto* root = component.create();
        ASSERT_NE(root, nullptr) << component.errorString().toStdString();
        view.setContent(QUrl(), nullptr, root);
        view.resize(400, 200);
        driver = std::make_unique<WindowDriver>(view);
        card = driver->find(QStringLiteral("card"));
        ASSERT_NE(card, nullptr);
    }
    [[nodiscard]] QImage pictureOn(const QColor& ground) {
        view.rootObject()->setProperty("color", ground);
        return driver->picture();
    }
    /// At a place of the card, in its own units.
    [[nodiscard]] QColor colorAt(const QImage& picture, double x, double y) const {
        const double scale = picture.width() / 400.0;
        const QPointF place = card->mapToScene(QPointF(x, y)) * scale;
        return picture.pixelColor(static_cast<int>(place.x()), static_cast<int>(place.y()));
    }

    QQuickView view;
    std::unique_ptr<WindowDriver> driver;
    QQuickItem* card = nullptr;
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
    ASSERT_TRUE(waitUntilOpenBy(1.0, QStringLiteral("goldCard1")));
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
    ASSERT_TRUE(waitUntilOpenBy(1.0, QStringLiteral("goldCard0")));
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

TEST_F(AuditWindow, theBarOfTheCoverageStaysWithinItsTrack) {
    struct Row {
        double percent;
        const char* used;
        const char* unused;
        double share;
    };
    const std::vector<Row> rows = {{0.0, "0.0%", "100.0%", 0.0},
                                   {25.0, "25.0%", "75.0%", 0.25},
                                   {100.0, "100.0%", "0.0%", 1.0},
                                   {131.2, "131.2%", "-31.2%", 1.0}};
    launch();
    for (const auto& row : rows) {
        AuditReport report;
        report.coveragePercent = row.percent;
        givenAudit(report);
        show(MineStep::review, QStringLiteral("coverageCard"));
        EXPECT_TRUE(driver->showsText(QString::fromUtf8(row.used)));
        EXPECT_TRUE(driver->showsText(QString::fromUtf8(row.unused)));
        const auto track = driver->find(QStringLiteral("coverageBar"))->width();
        EXPECT_DOUBLE_EQ(filledOf(QStringLiteral("coverageBar")), row.share * track) << row.percent;
    }
}

TEST_F(AuditWindow, theConfidenceHasItsWordsAndItsColour) {
    struct Row {
        double score;
        const char* message;
        QColor color;
    };
    const QColor green(0x30, 0xD1, 0x58);
    const QColor orange(0xFF, 0x9F, 0x0A);
    const QColor red(0xFF, 0x45, 0x3A);
    const std::vector<Row> rows = {{80.0, "Excellent coverage — only minor gems missing", green},
                                   {79.9, "Good coverage — some significant moments unused", orange},
                                   {60.0, "Good coverage — some significant moments unused", orange},
                                   {59.9, "Major gaps — review buried gold carefully", red}};
    launch();
    for (const auto& row : rows) {
        AuditReport report;
        report.confidenceScore = row.score;
        givenAudit(report);
        show(MineStep::review, QStringLiteral("confidenceCard"));
        EXPECT_EQ(textOf(QStringLiteral("confidenceMessage")).toStdString(), row.message) << row.score;
        const auto* bar = driver->find(QStringLiteral("confidenceBar"));
        EXPECT_EQ(bar->property("startColor").value<QColor>(), row.color) << row.score;
        EXPECT_NEAR(bar->property("endColor").value<QColor>().alphaF(), 0.7, 0.01);
        EXPECT_DOUBLE_EQ(filledOf(QStringLiteral("confidenceBar")), row.score / 100.0 * bar->width());
    }
}

TEST_F(AuditWindow, aMomentOpensAndClosesInAnAnimation) {
    showAudit(lighthouseAudit());
    auto* card = driver->find(QStringLiteral("goldCard0"));
    card->setProperty("duration", 1500); // slow enough to be seen on a machine that has much else to do
    const auto closed = card->height();
    driver->click(QStringLiteral("goldCard0"));
    ASSERT_TRUE(waitUntil([card, closed] { return card->height() > closed + 5; }));
    EXPECT_LT(card->property("openness").toDouble(), 1.0);
    ASSERT_TRUE(waitUntilOpenBy(1.0, QStringLiteral("goldCard0")));
    const auto open = card->height();
    driver->click(card->mapToScene(QPointF(200, 20)).toPoint());
    EXPECT_FALSE(driver->shows(QStringLiteral("goldCard0Select"))) << "it can be used while it goes";
    ASSERT_TRUE(waitUntil([card, open] { return card->height() < open - 5; }));
    EXPECT_GT(card->height(), closed);
    EXPECT_NE(driver->findEvenDisabled(QStringLiteral("goldCard0Select")), nullptr) << "it is gone at once";
    ASSERT_TRUE(waitUntilOpenBy(0.0, QStringLiteral("goldCard0")));
    EXPECT_EQ(card->height(), closed);
    EXPECT_EQ(driver->findEvenDisabled(QStringLiteral("goldCard0Select")), nullptr);
}

TEST_F(AuditWindow, aPressOnAMomentAtTheEdgeLeavesThePageWhereItStands) {
    showAudit(lighthouseAudit());
    const auto* card = driver->find(QStringLiteral("goldCard2"));
    const auto middle = card->mapToScene(QPointF(card->width() / 2, card->height() / 2)).y();
    driver->resize(1100, static_cast<int>(middle) + 12); // its lower half lies below the window's edge
    const auto before = driver->find(QStringLiteral("pageColumn"))->mapToScene(QPointF()).y();
    driver->click(QStringLiteral("goldCard2"));
    EXPECT_EQ(driver->find(QStringLiteral("pageColumn"))->mapToScene(QPointF()).y(), before);
    EXPECT_TRUE(waitUntilOpenBy(1.0, QStringLiteral("goldCard2")));
}

TEST_F(AuditWindow, theMostStarsStayInTheCardOfTheSmallestWindow) {
    auto report = lighthouseAudit();
    report.buriedGold[0].emotionalWeight = 1'000'000'000;
    showAudit(report);
    driver->resize(900, 600);
    const auto* card = driver->find(QStringLiteral("goldCard0"));
    ASSERT_NE(card, nullptr);
    const auto around = card->mapRectToScene(QRectF(0, 0, card->width(), card->height()));
    int stars = 0;
    for (const auto* item : driver->shownItems()) {
        if (!card->isAncestorOf(item) || item->property("name").toString() != QStringLiteral("star.fill"))
            continue;
        ++stars;
        EXPECT_TRUE(around.contains(item->mapRectToScene(QRectF(0, 0, item->width(), item->height()))));
    }
    EXPECT_EQ(stars, 50);
}

TEST_F(GoldCardLook, theGroundShinesThrough) {
    const auto onBlack = pictureOn(Qt::black);
    const auto onWhite = pictureOn(Qt::white);
    const auto dark = colorAt(onBlack, 300, 20);
    const auto light = colorAt(onWhite, 300, 20);
    const double through = (light.red() - dark.red()) / 255.0;
    EXPECT_GT(through, 0.2);
    EXPECT_LT(through, 0.6);
    EXPECT_GT(dark.red(), 0) << "there is a card at all";
}

TEST_F(GoldCardLook, theBorderLeavesTheInsideAlone) {
    card->setProperty("isSelected", true);
    const auto picture = pictureOn(Qt::black);
    const auto edge = [this, &picture](double y) { return colorAt(picture, 160, y); };
    const auto top = edge(0.5);
    const auto bottom = edge(card->height() - 1);
    const auto inside = edge(20);
    EXPECT_GT(top.red(), 140);               // the accent, 232 red, at 0.7
    EXPECT_GT(top.red(), bottom.red() + 40); // which fades to 0.3
    card->setProperty("isSelected", false);
    EXPECT_EQ(colorAt(pictureOn(Qt::black), 160, 20), inside) << "nor is its shadow seen through it";
}

TEST_F(GoldCardLook, aCardThatIsCutOffShowsNoBorderBeyond) {
    card->setProperty("isSelected", true);
    auto* frame = view.rootObject();
    card->setY(-20);
    frame->setProperty("clip", true);
    frame->setY(60); // as under the steps, when the page has been scrolled
    const auto picture = driver->picture();
    const double scale = picture.width() / 400.0;
    for (int y = 0; y < 60; ++y) {
        for (const double x : {40.5, 200.0, 359.0})
            EXPECT_EQ(picture.pixelColor(static_cast<int>(x * scale), static_cast<int>(y * scale)), QColor(Qt::white));
    }
}
