#include "ui/ShellFixture.h"

#include <QGuiApplication>
#include <QTest>
#include <filesystem>

// The window, its sidebar and what stands beside it, under the hands of a user.

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

namespace fs = std::filesystem;

class ShellTest : public ShellFixture {
protected:
    ShellTest() = default;

    [[nodiscard]] QString tab(int number) const { return QStringLiteral("tab") + QString::number(number); }
    [[nodiscard]] bool isChosen(int number) { return driver->find(tab(number))->property("isSelected").toBool(); }
    [[nodiscard]] QColor background(int number) {
        return driver->find(tab(number))
            ->property("background")
            .value<QQuickItem*>()
            ->property("color")
            .value<QColor>();
    }
    [[nodiscard]] QPoint middleOfWindow() { return {driver->window().width() / 2, driver->window().height() / 2}; }

    /// A mine of the sample interview has been started from the flow that stands.
    void startMine() {
        auto* flow = world.page<MineViewModel>();
        ASSERT_NE(flow, nullptr);
        std::vector<DroppedFile> files;
        for (const auto* name : {"harbour_interview_01.m4a", "harbour_interview_02.m4a"}) {
            DroppedFile file;
            file.url =
                QUrl::fromLocalFile(standin::StandIn::defaultSampleFolder() + QLatin1Char('/') + QLatin1String(name));
            files.push_back(file);
        }
        flow->setDroppedFiles(std::move(files));
        flow->setupNext();
        flow->styleNext();
    }
    [[nodiscard]] std::vector<std::string> exportedFiles() const {
        std::vector<std::string> names;
        const auto folder = world.home() + "/Library/Application Support/ZuvoManager/exports";
        if (!fs::exists(folder))
            return names;
        for (const auto& entry : fs::recursive_directory_iterator(folder)) {
            if (entry.is_regular_file())
                names.push_back(entry.path().string());
        }
        return names;
    }
};

} // namespace

// The sidebar

TEST_F(ShellTest, theSidebarHasTheMineThenAccountThenUpdates) {
    launchSignedIn();
    std::vector<std::pair<double, std::string>> entries;
    for (const int number : {0, 1, 2}) {
        const auto* item = driver->find(tab(number));
        ASSERT_NE(item, nullptr);
        entries.emplace_back(item->mapToScene({0, 0}).y(), item->property("label").toString().toStdString());
    }
    std::sort(entries.begin(), entries.end());
    EXPECT_EQ(entries[0].second, "The Mine");
    EXPECT_EQ(entries[1].second, "Account");
    EXPECT_EQ(entries[2].second, "Updates");
}

TEST_F(ShellTest, itStartsOnTheMine) {
    launchSignedIn();
    EXPECT_TRUE(isChosen(1));
    EXPECT_FALSE(isChosen(0));
    EXPECT_FALSE(isChosen(2));
    EXPECT_TRUE(driver->shows(QStringLiteral("pageStack")));
}

TEST_F(ShellTest, theSidebarNamesTheProductAndItsVersion) {
    launchSignedIn();
    for (const auto* text : {"Zuvo", "Story Mining", "Connected", "v1.0.0"})
        EXPECT_TRUE(driver->showsText(QLatin1String(text))) << text;
}

TEST_F(ShellTest, aClickOnAnEntryShowsItsPageAlone) {
    launchSignedIn();
    driver->click(tab(0));
    EXPECT_TRUE(driver->waitFor(QStringLiteral("signOutButton")));
    EXPECT_FALSE(driver->shows(QStringLiteral("pageStack")));
    EXPECT_TRUE(isChosen(0));
    driver->click(tab(2));
    EXPECT_TRUE(driver->waitFor(QStringLiteral("checkButton")));
    EXPECT_FALSE(driver->shows(QStringLiteral("signOutButton")));
    driver->click(tab(1));
    EXPECT_TRUE(driver->waitFor(QStringLiteral("step0")));
    EXPECT_FALSE(driver->shows(QStringLiteral("checkButton")));
}

TEST_F(ShellTest, theKeyboardChoosesAnEntryAndStaysOnIt) {
    launchSignedIn();
    ASSERT_TRUE(driver->tabTo(tab(0)));
    driver->press(Qt::Key_Space);
    EXPECT_TRUE(driver->waitFor(QStringLiteral("signOutButton")));
    EXPECT_EQ(driver->focusedName(), tab(0));
    driver->press(Qt::Key_Tab);
    EXPECT_EQ(driver->focusedName(), tab(2));
    driver->press(Qt::Key_Return);
    EXPECT_TRUE(driver->waitFor(QStringLiteral("latestRow")));
    EXPECT_EQ(driver->focusedName(), tab(2));
}

TEST_F(ShellTest, anEntryThatIsPointedAtIsLit) {
    launchSignedIn();
    EXPECT_EQ(background(0).alphaF(), 0.0F);
    driver->hover(tab(0));
    EXPECT_TRUE(driver->find(tab(0))->property("isHovered").toBool());
    EXPECT_NEAR(background(0).alphaF(), 0.03, 0.001);
    EXPECT_NEAR(background(1).alphaF(), 0.08, 0.001);
    QTest::mouseMove(&driver->window(), middleOfWindow());
    EXPECT_TRUE(waitUntil([this] { return background(0).alphaF() == 0.0F; }));
    EXPECT_FALSE(driver->find(tab(0))->property("isHovered").toBool());
}

TEST_F(ShellTest, leavingTheMineAndComingBackStartsAtTheFirstStep) {
    launchSignedIn();
    world.page<MineViewModel>()->advanceTo(MineStep::review);
    driver->click(tab(0));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("signOutButton")));
    driver->click(tab(1));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("step0")));
    EXPECT_EQ(world.page<MineViewModel>()->currentStep(), MineStep::setup);
    EXPECT_TRUE(driver->waitFor(QStringLiteral("emptyDropZone")));
}

TEST_F(ShellTest, aClickOnTheChosenEntryKeepsThePageAsItIs) {
    launchSignedIn();
    world.page<MineViewModel>()->advanceTo(MineStep::review);
    driver->click(tab(1));
    EXPECT_EQ(world.page<MineViewModel>()->currentStep(), MineStep::review);
}

TEST_F(ShellTest, theSidebarIsMadeForWhoeverIsSignedInAlone) {
    launchSignedOut();
    EXPECT_EQ(driver->findEvenDisabled(tab(1)), nullptr);
    EXPECT_FALSE(driver->showsText(QStringLiteral("Story Mining")));
    for (int round = 0; round < 2; ++round) {
        world.app().authManager()->signIn();
        world.app().handleCallback("zuvo-manager://callback?token=zuvo_link");
        ASSERT_TRUE(driver->waitFor(tab(1)));
        EXPECT_TRUE(driver->showsText(QStringLiteral("Story Mining")));
        const auto* stack = driver->find(QStringLiteral("pageStack"));
        ASSERT_NE(stack, nullptr);
        EXPECT_NEAR(stack->mapToScene({0, 0}).x(), 220.5, 0.5); // behind the sidebar and its line
        world.app().authManager()->signOut();
        EXPECT_TRUE(driver->shows(QStringLiteral("browserButton")));
        EXPECT_EQ(driver->findEvenDisabled(tab(1)), nullptr);
        EXPECT_EQ(driver->find(QStringLiteral("page"))->x(), 0.0);
    }
}

// The account's page

TEST_F(ShellTest, theAccountIsAskedForWhenItsPageIsShown) {
    launchSignedIn();
    const auto before = world.services.requests(standin::Service::me).size();
    world.services.setAccount({"user-1", "zoe", "zoe@farofilms.example", 7, "Trial"});
    driver->click(tab(0));
    EXPECT_TRUE(driver->waitForText(QStringLiteral("zoe")));
    EXPECT_TRUE(driver->waitForText(QStringLiteral("Z")));
    EXPECT_TRUE(driver->showsText(QStringLiteral("zoe@farofilms.example")));
    EXPECT_TRUE(driver->showsText(QStringLiteral("7")));
    EXPECT_TRUE(driver->showsText(QStringLiteral("Trial")));
    EXPECT_TRUE(driver->showsText(QStringLiteral("FREE")));
    EXPECT_EQ(world.services.requests(standin::Service::me).size(), before + 1);
}

TEST_F(ShellTest, refreshIsDisabledAndTurnsWhileTheServiceIsAsked) {
    launchSignedIn();
    driver->click(tab(0));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("refreshButton")));
    world.services.fail(standin::Service::me, standin::Failure::late(std::chrono::milliseconds(400)));
    driver->click(QStringLiteral("refreshButton"));
    auto* button = driver->findEvenDisabled(QStringLiteral("refreshButton"));
    EXPECT_FALSE(button->isEnabled());
    const auto* symbol = button->property("contentItem").value<QQuickItem*>();
    EXPECT_TRUE(waitUntil([symbol] { return symbol->rotation() > 0.0; }));
    EXPECT_TRUE(waitUntil([button] { return button->isEnabled(); }));
    EXPECT_TRUE(waitUntil([symbol] { return symbol->rotation() == 0.0; }));
}

TEST_F(ShellTest, bothBillingButtonsOpenTheBillingPage) {
    launchSignedIn();
    driver->click(tab(0));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("buyCreditsButton")));
    driver->click(QStringLiteral("buyCreditsButton"));
    driver->click(QStringLiteral("manageBillingButton"));
    const auto billing = world.services.accountBase().toStdString() + "/billing";
    EXPECT_THAT(world.desktop->urls, ElementsAre(billing, billing));
}

TEST_F(ShellTest, signingOutShowsTheSignInPageAtOnce) {
    launchSignedIn();
    driver->click(tab(0));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("signOutButton")));
    driver->click(QStringLiteral("signOutButton"));
    EXPECT_TRUE(driver->shows(QStringLiteral("browserButton")));
    EXPECT_FALSE(driver->shows(tab(0)));
    EXPECT_FALSE(fs::exists(world.tokenFile()));
}

TEST_F(ShellTest, aTokenThatTheServiceNoLongerKnowsLeadsBackToTheSignInPage) {
    launchSignedIn();
    world.services.fail(standin::Service::me, standin::Failure::status(401, "Unauthorized"));
    driver->click(tab(0));
    EXPECT_TRUE(driver->waitFor(QStringLiteral("browserButton")));
    EXPECT_FALSE(driver->shows(tab(0)));
}

// A mine under way

TEST_F(ShellTest, aMineGoesOnToItsExportsWhenItsUserSignsOut) {
    launchSignedIn();
    startMine();
    ASSERT_TRUE(waitUntil([this] { return !world.services.requests(standin::Service::transcription).empty(); }));
    world.app().authManager()->signOut();
    EXPECT_TRUE(driver->shows(QStringLiteral("browserButton")));
    EXPECT_TRUE(waitUntil([this] { return !exportedFiles().empty(); }));
    EXPECT_TRUE(driver->shows(QStringLiteral("browserButton")));
}

TEST_F(ShellTest, aMineThatGoesOnUnseenDoesNotMoveTheNextFlow) {
    launchSignedIn();
    startMine();
    driver->click(tab(2));
    driver->click(tab(1));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("step0")));
    ASSERT_TRUE(waitUntil([this] { return !exportedFiles().empty(); }));
    runEventLoop(std::chrono::milliseconds(200));
    EXPECT_EQ(world.page<MineViewModel>()->currentStep(), MineStep::setup);
}

TEST_F(ShellTest, theProgramEndsInTheMiddleOfAMine) {
    launchSignedIn();
    startMine();
    ASSERT_TRUE(waitUntil([this] { return !world.services.requests(standin::Service::transcription).empty(); }));
    driver.reset();
    world.launch();
    runEventLoop(std::chrono::milliseconds(100));
    EXPECT_THAT(exportedFiles(), IsEmpty());
}

// The window

TEST_F(ShellTest, theWindowOpensInItsSizeInTheMiddleOfTheScreen) {
    launchSignedIn();
    const auto& window = driver->window();
    EXPECT_EQ(window.size(), QSize(1100, 750));
    EXPECT_EQ(window.minimumSize(), QSize(900, 600));
    const auto screen = window.screen()->availableGeometry();
    EXPECT_NEAR(window.x(), screen.x() + (screen.width() - 1100) / 2, 1);
    EXPECT_NEAR(window.y(), screen.y() + (screen.height() - 750) / 2, 1);
    EXPECT_EQ(window.color(), QColor::fromRgbF(0.102F, 0.086F, 0.071F));
    EXPECT_TRUE(window.flags() & Qt::FramelessWindowHint);
    EXPECT_EQ(window.title(), QStringLiteral("Zuvo"));
}

TEST_F(ShellTest, theCloseButtonClosesTheWindowWithWhichTheProgramEnds) {
    launchSignedIn();
    ASSERT_TRUE(QGuiApplication::quitOnLastWindowClosed());
    driver->click(QStringLiteral("closeButton"));
    EXPECT_FALSE(driver->window().isVisible());
    for (const auto* window : QGuiApplication::allWindows())
        EXPECT_FALSE(window->isVisible()) << window->title().toStdString();
}

TEST_F(ShellTest, theWindowIsMinimisedAndComesBackWhenBroughtUp) {
    launchSignedIn();
    driver->click(QStringLiteral("minimiseButton"));
    EXPECT_EQ(driver->window().visibility(), QWindow::Minimized);
    driver->engine().bringUp();
    EXPECT_EQ(driver->window().visibility(), QWindow::Windowed);
}

TEST_F(ShellTest, zoomMakesTheWindowAsLargeAsTheScreenAndBack) {
    launchSignedIn();
    driver->click(QStringLiteral("zoomButton"));
    ASSERT_TRUE(waitUntil([this] { return driver->window().visibility() == QWindow::Maximized; }));
    EXPECT_TRUE(waitUntil([this] { return driver->window().width() > 1100; }));
    driver->click(QStringLiteral("zoomButton"));
    EXPECT_TRUE(waitUntil([this] { return driver->window().visibility() == QWindow::Windowed; }));
}

TEST_F(ShellTest, aDoubleClickOnTheTitleStripZooms) {
    launchSignedIn();
    QTest::mouseDClick(&driver->window(), Qt::LeftButton, Qt::NoModifier, QPoint(600, 9));
    EXPECT_TRUE(waitUntil([this] { return driver->window().visibility() == QWindow::Maximized; }));
}

TEST_F(ShellTest, theWindowIsMovedByItsTitleStrip) {
    launchSignedIn();
    const auto before = driver->window().position();
    driver->drag({600, 10}, {40, 30});
    EXPECT_EQ(driver->window().position() - before, QPoint(40, 30));
    EXPECT_EQ(driver->window().size(), QSize(1100, 750));
    // Over the sidebar the strip reaches down to the product's name.
    driver->drag({150, 40}, {-50, 20});
    EXPECT_EQ(driver->window().position() - before, QPoint(-10, 50));
}

TEST_F(ShellTest, aPressWithoutAMoveLeavesTheWindowInItsPlace) {
    launchSignedIn();
    const auto before = driver->window().position();
    driver->click(QPoint(600, 10));
    EXPECT_EQ(driver->window().position(), before);
}

TEST_F(ShellTest, theWindowIsResizedByEachOfItsEdges) {
    launchSignedIn();
    auto& window = driver->window();
    const auto frame = [&window] { return window.geometry(); };
    auto expected = frame();

    driver->drag({window.width() - 2, 300}, {60, 0});
    expected.setWidth(1160);
    EXPECT_EQ(frame(), expected) << "right";
    driver->drag({500, window.height() - 2}, {0, 50});
    expected.setHeight(800);
    EXPECT_EQ(frame(), expected) << "bottom";
    driver->drag({2, 300}, {-40, 0});
    expected.setLeft(expected.left() - 40);
    EXPECT_EQ(frame(), expected) << "left";
    driver->drag({500, 2}, {0, -30});
    expected.setTop(expected.top() - 30);
    EXPECT_EQ(frame(), expected) << "top";
    driver->drag({window.width() - 2, window.height() - 2}, {-20, -10});
    expected.adjust(0, 0, -20, -10);
    EXPECT_EQ(frame(), expected) << "lower right corner";
    driver->drag({2, 2}, {15, 25});
    expected.adjust(15, 25, 0, 0);
    EXPECT_EQ(frame(), expected) << "upper left corner";
}

TEST_F(ShellTest, noEdgeMakesTheWindowSmallerThanItsSmallestSize) {
    launchSignedIn();
    auto& window = driver->window();
    const auto before = window.geometry();
    driver->drag({2, 2}, {600, 500});
    EXPECT_EQ(window.size(), QSize(900, 600));
    EXPECT_EQ(window.geometry().bottomRight(), before.bottomRight()) << "the other corner stays where it was";
    driver->drag({window.width() - 2, window.height() - 2}, {-300, -300});
    EXPECT_EQ(window.size(), QSize(900, 600));
    EXPECT_EQ(window.geometry().bottomRight(), before.bottomRight());
}

TEST_F(ShellTest, aMaximisedWindowHasNoEdgesToPull) {
    launchSignedIn();
    driver->click(QStringLiteral("zoomButton"));
    ASSERT_TRUE(waitUntil([this] { return driver->window().width() > 1100; }));
    const auto before = driver->window().geometry();
    driver->drag({driver->window().width() - 2, 300}, {-100, 0});
    EXPECT_EQ(driver->window().geometry(), before);
}
