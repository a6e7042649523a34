#include "ui/FlowFixture.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QTest>
#include <algorithm>

// A page that leaves looks as it did, and takes nothing any more.

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;

namespace {

class LeavingPage : public FlowFixture {
protected:
    void goTo(MineStep step) {
        flow().advanceTo(step);
        thenStepIs(step);
    }

    /// The page begins to leave, so slowly that it stays where it is.
    void leaveTo(MineStep step) {
        auto* stack = driver->find(QStringLiteral("pageStack"));
        leaving = stack->childItems().constLast();
        stack->setProperty("duration", 10'000'000);
        flow().advanceTo(step);
        ASSERT_EQ(stack->childItems().size(), 2);
    }

    /// What the page's area shows.
    [[nodiscard]] QImage look() {
        const auto* stack = driver->find(QStringLiteral("pageStack"));
        const auto place = stack->mapRectToScene(stack->boundingRect()).toRect();
        const auto image = driver->picture();
        const auto ratio = image.devicePixelRatio();
        return image.copy(QRectF(place.topLeft() * ratio, place.size() * ratio).toRect());
    }

    /// How far the pictures are apart where they are farthest, 0 to 255, in the middle of small squares: what fades is
    /// drawn in another way, which the edges of letters show.
    static int difference(const QImage& before, const QImage& during) {
        EXPECT_EQ(before.size(), during.size());
        constexpr int square = 8;
        const auto a = before.scaled(before.size() / square, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        const auto b = during.scaled(during.size() / square, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        int most = 0;
        for (int y = 0; y < std::min(a.height(), b.height()); ++y) {
            for (int x = 0; x < std::min(a.width(), b.width()); ++x) {
                const auto one = a.pixel(x, y);
                const auto other = b.pixel(x, y);
                most = std::max({most, std::abs(qRed(one) - qRed(other)), std::abs(qGreen(one) - qGreen(other)),
                                 std::abs(qBlue(one) - qBlue(other))});
            }
        }
        return most;
    }

    void expectTheSameLookWhileItLeavesTo(MineStep step) {
        QTest::mouseMove(&driver->window(), QPoint(100, 600)); // on nothing that answers to the pointer
        const auto before = look();
        leaveTo(step);
        const auto during = look();
        constexpr int aBitOfFading = 12;
        EXPECT_LE(difference(before, during), aBitOfFading);
    }

    [[nodiscard]] QPoint middleOf(const QString& name) {
        const auto* item = driver->find(name);
        return item->mapToScene({item->width() / 2, item->height() / 2}).toPoint();
    }

    QQuickItem* leaving = nullptr;
};

} // namespace

TEST_F(LeavingPage, theSetupKeepsItsLook) {
    launch();
    drop({sample(1), sample(2)});
    ASSERT_TRUE(waitUntil([this] {
        return std::none_of(flow().droppedFiles().begin(), flow().droppedFiles().end(),
                            [](const DroppedFile& file) { return file.isProbing; });
    }));
    expectTheSameLookWhileItLeavesTo(MineStep::style);
}

TEST_F(LeavingPage, aButtonThatIsGreyStaysGrey) {
    givenResolve("Faro", "Assembly\n");
    launch();
    driver->click(QStringLiteral("resolveTab"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("timelinePicker")));
    expectTheSameLookWhileItLeavesTo(MineStep::style);
}

TEST_F(LeavingPage, theReviewKeepsItsLook) {
    launch();
    goTo(MineStep::review);
    expectTheSameLookWhileItLeavesTo(MineStep::style);
}

TEST_F(LeavingPage, takesNeitherClicksNorTab) {
    launch();
    drop({givenFile("a.wav")});
    const auto button = middleOf(QStringLiteral("actionButton"));
    const auto removal = middleOf(QStringLiteral("removeFile0"));
    driver->find(QStringLiteral("actionButton"))->forceActiveFocus(Qt::TabFocusReason);
    leaveTo(MineStep::processing);
    driver->click(button);
    driver->click(removal);
    constexpr int moreThanAnyPageHas = 60;
    for (int presses = 0; presses < moreThanAnyPageHas; ++presses) {
        EXPECT_FALSE(leaving->hasActiveFocus());
        ASSERT_FALSE(leaving->isAncestorOf(driver->window().activeFocusItem()));
        driver->press(Qt::Key_Tab);
    }
    EXPECT_EQ(flow().currentStep(), MineStep::processing);
    EXPECT_THAT(fileNames(), ElementsAre("a.wav"));
}

TEST_F(LeavingPage, takesNoDrop) {
    launch();
    const auto place = middleOf(QStringLiteral("dropZone"));
    leaveTo(MineStep::review);
    QMimeData data;
    data.setUrls({givenFile("late.wav")});
    QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&driver->window(), &enter);
    QDropEvent letGo(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&driver->window(), &letGo);
    EXPECT_TRUE(fileNames().empty());
}
