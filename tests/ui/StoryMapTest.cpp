#include "ui/ReviewFixture.h"

#include <QPointingDevice>
#include <QWheelEvent>

using namespace zuvo;
using namespace zuvo::tests;

namespace {

class StoryMapWindow : public ReviewFixture {
protected:
    void openMap() {
        openReview();
        page->map()->setJitter([] { return 0.0; });
        driver->click(QStringLiteral("mapButton"));
        ASSERT_TRUE(driver->waitFor(QStringLiteral("mapCard0")));
        settle();
    }
};

} // namespace

TEST_F(StoryMapWindow, aDraggedCardLiesWhereItIsDroppedAndTheOrderStays) {
    openMap();
    const auto before = order();
    const auto from = middleOf(QStringLiteral("mapCard0"));
    pressAt(from);
    moveTo(from + QPoint(0, 10));
    moveTo(from + QPoint(60, 150));
    releaseAt(from + QPoint(60, 150));
    EXPECT_EQ(middleOf(QStringLiteral("mapCard0")), from + QPoint(60, 150));
    EXPECT_EQ(order(), before);
    EXPECT_TRUE(page->reviewActions().empty());
}

TEST_F(StoryMapWindow, whatACardOffersShowsWhileItIsPointedAt) {
    openMap();
    EXPECT_FALSE(driver->shows(QStringLiteral("mapPlayButton")));
    driver->hover(QStringLiteral("mapCard4"));
    ASSERT_TRUE(driver->shows(QStringLiteral("mapPlayButton")));
    driver->click(QStringLiteral("mapPlayButton"));
    EXPECT_EQ(page->playingSegment(), 4);
    driver->click(QStringLiteral("mapRemoveButton"));
    EXPECT_FALSE(page->playingSegment());
    EXPECT_EQ(page->segments().size(), 10U);
}

TEST_F(StoryMapWindow, theKeyboardReachesACardAndWhatItOffers) {
    openMap();
    driver->find(QStringLiteral("mapCard2"))->forceActiveFocus(Qt::TabFocusReason);
    EXPECT_TRUE(driver->shows(QStringLiteral("mapRemoveButton")));
    driver->press(Qt::Key_Space);
    EXPECT_EQ(page->playingSegment(), 2);
    driver->press(Qt::Key_Delete);
    EXPECT_EQ(page->segments().size(), 10U);
}

TEST_F(StoryMapWindow, theEmptyBoardIsPannedAheadOfThePointer) {
    openMap();
    const auto* board = driver->find(QStringLiteral("mapBoard"));
    ASSERT_NE(board, nullptr);
    const auto from = board->mapToScene({30, 20}).toPoint();
    pressAt(from);
    moveTo(from + QPoint(10, 0));
    moveTo(from + QPoint(20, 0));
    releaseAt(from + QPoint(20, 0));
    EXPECT_NEAR(page->map()->artboardOffset().x(), 9.0, 1e-6);
}

TEST_F(StoryMapWindow, theWheelZoomsWithControlOnly) {
    openMap();
    const auto* board = driver->find(QStringLiteral("mapBoard"));
    const auto turn = [&](Qt::KeyboardModifiers modifiers) {
        const auto at = board->mapToScene({30, 20});
        QWheelEvent event(at, at, {}, {0, 120}, Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&driver->window(), &event);
    };
    turn(Qt::NoModifier);
    EXPECT_EQ(page->map()->artboardScale(), 1.0);
    turn(Qt::ControlModifier);
    EXPECT_NEAR(page->map()->artboardScale(), 1.1, 1e-9);
}

TEST_F(StoryMapWindow, theMapIsMadeAnewEachTime) {
    openMap();
    const auto home = page->map()->positionOf(0);
    page->map()->moveCard(0, 5, 5);
    page->map()->zoom(2);
    driver->click(QStringLiteral("listButton"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("segmentCard0")));
    driver->click(QStringLiteral("mapButton"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("mapCard0")));
    EXPECT_EQ(page->map()->positionOf(0), home);
    EXPECT_EQ(page->map()->artboardScale(), 1.0);
}

TEST_F(StoryMapWindow, twoFingersZoomTheBoardToWhatTheyHaveSpread) {
    openMap();
    auto* finger = QTest::createTouchDevice(); // deleted by the application
    const auto* board = driver->find(QStringLiteral("mapBoard"));
    const auto middle = board->mapToScene({board->width() / 2, board->height() / 2}).toPoint();
    const auto spread = [&](int from, int to) {
        constexpr int steps = 20;
        QTest::touchEvent(&driver->window(), finger)
            .press(0, middle - QPoint(from, 0))
            .press(1, middle + QPoint(from, 0));
        for (int step = 1; step <= steps; ++step) {
            const auto way = QPoint(from + (to - from) * step / steps, 0);
            runEventLoop(std::chrono::milliseconds(4));
            QTest::touchEvent(&driver->window(), finger).move(0, middle - way).move(1, middle + way);
        }
        QTest::touchEvent(&driver->window(), finger)
            .release(0, middle - QPoint(to, 0))
            .release(1, middle + QPoint(to, 0));
    };
    spread(60, 90);
    EXPECT_GT(page->map()->artboardScale(), 1.1);
    EXPECT_LE(page->map()->artboardScale(), 1.5);
    spread(40, 180);
    EXPECT_EQ(page->map()->artboardScale(), 2.0);
    spread(180, 30);
    EXPECT_EQ(page->map()->artboardScale(), 0.4);
}

TEST_F(StoryMapWindow, upAndDownChooseACardInTheOrderOfTheStory) {
    openMap();
    const auto focused = [this] { return driver->focusedName(); };
    driver->press(Qt::Key_Down);
    EXPECT_EQ(focused(), QStringLiteral("mapCard0"));
    driver->press(Qt::Key_Down);
    driver->press(Qt::Key_Down);
    EXPECT_EQ(focused(), QStringLiteral("mapCard2"));
    driver->press(Qt::Key_Up);
    EXPECT_EQ(focused(), QStringLiteral("mapCard1"));
    driver->press(Qt::Key_Delete);
    EXPECT_EQ(page->segments().size(), 10U);
    EXPECT_EQ(focused(), QStringLiteral("mapCard1"));
    driver->press(Qt::Key_Space);
    EXPECT_EQ(page->playingSegment(), 2);
}

TEST_F(StoryMapWindow, aCardLiesStraight) {
    openMap();
    EXPECT_EQ(driver->find(QStringLiteral("mapCard0"))->rotation(), 0.0);
}

TEST_F(StoryMapWindow, aCardBeginsOnAPixelOfTheScreenWhereverTheBoardIsPanned) {
    openMap();
    const auto* card = driver->find(QStringLiteral("mapCard0"));
    const auto isOnPixel = [&] {
        const auto corner = card->mapToScene({0, 0});
        return corner == QPointF(corner.toPoint());
    };
    page->map()->moveCard(0, 300.3, 200.6);
    EXPECT_TRUE(isOnPixel());
    page->map()->pan(1, 2);
    EXPECT_TRUE(isOnPixel());
    EXPECT_NEAR(page->map()->artboardOffset().x(), 0.3, 1e-9);
}

TEST_F(StoryMapWindow, picturesAreMixedFromTheirPixelsOnlyOnceAZoomRests) {
    openMap();
    const auto isSmooth = [this] { return driver->find(QStringLiteral("mapCard0"))->property("isSmooth").toBool(); };
    EXPECT_FALSE(isSmooth());
    page->map()->zoom(0.8);
    EXPECT_FALSE(isSmooth());
    EXPECT_TRUE(waitUntil(isSmooth));
    page->map()->zoom(1);
    EXPECT_TRUE(waitUntil([&] { return !isSmooth(); }));
}
