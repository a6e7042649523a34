#include "fakes/SignInPage.h"
#include "ui/ShellFixture.h"
#include "ui/SignInViewModel.h"

#include <QTest>
#include <algorithm>
#include <filesystem>

// The page that stands until somebody is signed in, under the hands of a user.

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

namespace {

class SignInPageTest : public ShellFixture {
protected:
    SignInPageTest() = default;

    void openTokenField() {
        driver->click(QStringLiteral("tokenChoiceButton"));
        ASSERT_TRUE(waitForFocus(QStringLiteral("tokenField")));
        // It comes gently: at the very first there is nothing to be seen of it.
        ASSERT_TRUE(
            waitUntil([this] { return driver->findEvenDisabled(QStringLiteral("submitTokenButton")) != nullptr; }));
    }
    [[nodiscard]] QString typedToken() {
        const auto* field = driver->findEvenDisabled(QStringLiteral("tokenField"));
        return field == nullptr ? QString() : field->property("text").toString();
    }
    [[nodiscard]] std::size_t requestsForMe() const { return world.services.requests(standin::Service::me).size(); }

    /// The link behind the button of the page that the browser was sent to.
    [[nodiscard]] std::string linkOfOpenedPage() const {
        if (world.desktop->urls.empty())
            return {};
        return linkOfSignInPage(world.desktop->urls.back());
    }
};

} // namespace

TEST_F(SignInPageTest, aTokenTypedAndSubmittedByMouseLeadsToTheMainLayout) {
    launchSignedOut();
    openTokenField();
    driver->type(QStringLiteral("zuvo_abc"));
    driver->click(QStringLiteral("submitTokenButton"));
    ASSERT_TRUE(waitForMainLayout());
    EXPECT_FALSE(driver->shows(QStringLiteral("tokenField")));
    const auto asked = world.services.requests(standin::Service::me);
    ASSERT_THAT(asked, SizeIs(1));
    EXPECT_EQ(asked.front().header("Authorization"), "Bearer zuvo_abc");
    EXPECT_TRUE(std::filesystem::exists(world.tokenFile()));
}

TEST_F(SignInPageTest, theKeyboardAloneSignsInByToken) {
    launchSignedOut();
    ASSERT_TRUE(driver->tabTo(QStringLiteral("tokenChoiceButton")));
    driver->press(Qt::Key_Return);
    ASSERT_TRUE(waitForFocus(QStringLiteral("tokenField")));
    driver->type(QStringLiteral("zuvo_abc"));
    ASSERT_TRUE(driver->tabTo(QStringLiteral("submitTokenButton")));
    driver->press(Qt::Key_Space);
    EXPECT_TRUE(waitForMainLayout());
}

TEST_F(SignInPageTest, returnInTheFieldSubmitsTheToken) {
    launchSignedOut();
    openTokenField();
    driver->type(QStringLiteral("zuvo_abc"));
    driver->press(Qt::Key_Return);
    EXPECT_TRUE(waitForMainLayout());
}

TEST_F(SignInPageTest, theTokenFieldComesAndGoesGently) {
    launchSignedOut();
    const auto* middle = driver->find(QStringLiteral("signInMiddle"));
    ASSERT_NE(middle, nullptr);
    EXPECT_EQ(middle->opacity(), 1.0) << "the first showing is no change";
    auto* page = world.page<SignInViewModel>();
    for (const auto* comes : {"tokenField", "browserButton"}) {
        std::vector<double> opacities;
        const auto watching = QObject::connect(middle, &QQuickItem::opacityChanged, middle,
                                               [&] { opacities.push_back(middle->opacity()); });
        page->toggleTokenField();
        EXPECT_EQ(middle->opacity(), 0.0) << comes;
        EXPECT_TRUE(waitUntil([middle] { return middle->opacity() == 1.0; })) << comes;
        EXPECT_TRUE(driver->shows(QLatin1String(comes)));
        QObject::disconnect(watching);
        EXPECT_TRUE(std::is_sorted(opacities.begin(), opacities.end())) << comes;
    }
}

TEST_F(SignInPageTest, theWaitingIsThereAtOnce) {
    launchSignedOut();
    const auto* middle = driver->find(QStringLiteral("signInMiddle"));
    world.page<SignInViewModel>()->signInWithBrowser();
    EXPECT_EQ(middle->opacity(), 1.0);
    EXPECT_TRUE(driver->shows(QStringLiteral("cancelWaitingButton")));
    // Also in the middle of a change.
    world.page<SignInViewModel>()->cancelWaiting();
    world.page<SignInViewModel>()->toggleTokenField();
    world.page<SignInViewModel>()->signInWithBrowser();
    EXPECT_EQ(middle->opacity(), 1.0);
    EXPECT_TRUE(driver->shows(QStringLiteral("cancelWaitingButton")));
}

TEST_F(SignInPageTest, aPressedButtonSinksAndComesBack) {
    launchSignedOut();
    const auto* button = driver->find(QStringLiteral("browserButton"));
    ASSERT_NE(button, nullptr);
    const auto place = button->mapToScene({button->width() / 2, button->height() / 2}).toPoint();
    EXPECT_EQ(button->scale(), 1.0);
    QTest::mousePress(&driver->window(), Qt::LeftButton, Qt::NoModifier, place);
    EXPECT_TRUE(waitUntil([button] { return button->scale() == 0.98 && button->property("sunk").toDouble() == 1.0; }));
    QTest::mouseMove(&driver->window(), {5, 5});
    QTest::mouseRelease(&driver->window(), Qt::LeftButton, Qt::NoModifier, {5, 5});
    EXPECT_TRUE(waitUntil([button] { return button->scale() == 1.0 && button->property("sunk").toDouble() == 0.0; }));
    EXPECT_THAT(world.desktop->urls, IsEmpty()) << "let go beside it, it is not clicked";
}

TEST_F(SignInPageTest, theButtonIsDisabledWhileTheFieldIsEmpty) {
    launchSignedOut();
    openTokenField();
    const auto isEnabled = [this] {
        return driver->findEvenDisabled(QStringLiteral("submitTokenButton"))->isEnabled();
    };
    EXPECT_FALSE(isEnabled());
    driver->press(Qt::Key_Return);
    driver->type(QStringLiteral("z"));
    EXPECT_TRUE(isEnabled());
    driver->press(Qt::Key_Backspace);
    EXPECT_FALSE(isEnabled());
    runEventLoop(std::chrono::milliseconds(50));
    EXPECT_EQ(requestsForMe(), 0U);
}

TEST_F(SignInPageTest, aRefusedTokenShowsTheErrorAndKeepsWhatWasTyped) {
    launchSignedOut();
    world.services.fail(standin::Service::me, standin::Failure::status(401, "Unauthorized"));
    openTokenField();
    driver->type(QStringLiteral("zuvo_wrong"));
    driver->click(QStringLiteral("submitTokenButton"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("errorView")));
    EXPECT_EQ(typedToken(), QStringLiteral("zuvo_wrong"));
    EXPECT_FALSE(world.content().isSignedIn());
    // Mended, it is taken.
    world.services.failNothing();
    driver->click(QStringLiteral("submitTokenButton"));
    EXPECT_TRUE(waitForMainLayout());
}

TEST_F(SignInPageTest, theButtonSaysThatTheTokenIsVerifiedWhileTheServiceIsAsked) {
    launchSignedOut();
    world.services.fail(standin::Service::me, standin::Failure::late(std::chrono::milliseconds(300)));
    openTokenField();
    EXPECT_TRUE(driver->showsText(QStringLiteral("Sign In")));
    driver->type(QStringLiteral("zuvo_abc"));
    driver->press(Qt::Key_Return);
    EXPECT_TRUE(driver->waitForText(QStringLiteral("Verifying...")));
    EXPECT_FALSE(driver->showsText(QStringLiteral("Sign In")));
    EXPECT_TRUE(waitForMainLayout());
}

TEST_F(SignInPageTest, whatWasTypedIsStillThereAfterBackAndForth) {
    launchSignedOut();
    openTokenField();
    driver->type(QStringLiteral("zuvo_half"));
    driver->click(QStringLiteral("tokenBackButton"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("browserButton")));
    EXPECT_FALSE(driver->shows(QStringLiteral("tokenField")));
    openTokenField();
    EXPECT_EQ(typedToken(), QStringLiteral("zuvo_half"));
}

TEST_F(SignInPageTest, escapeLeavesTheTokenField) {
    launchSignedOut();
    openTokenField();
    driver->press(Qt::Key_Escape);
    EXPECT_TRUE(driver->waitFor(QStringLiteral("browserButton")));
}

TEST_F(SignInPageTest, theFirstReturnOpensTheSignInPageInTheBrowser) {
    launchSignedOut();
    ASSERT_TRUE(waitForFocus(QStringLiteral("browserButton")));
    driver->press(Qt::Key_Return);
    ASSERT_TRUE(driver->waitFor(QStringLiteral("cancelWaitingButton")));
    EXPECT_TRUE(driver->showsText(QStringLiteral("Waiting for browser sign-in...")));
    EXPECT_THAT(world.desktop->urls, ElementsAre(world.services.accountBase().toStdString() +
                                                 "/plugin-auth?callback=zuvo-manager%3A%2F%2Fcallback"));
}

TEST_F(SignInPageTest, cancelLeavesTheWaitingAndALaterLinkStillSignsIn) {
    launchSignedOut();
    driver->click(QStringLiteral("browserButton"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("cancelWaitingButton")));
    driver->click(QStringLiteral("cancelWaitingButton"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("browserButton")));
    EXPECT_FALSE(world.content().isSignedIn());

    const auto link = linkOfOpenedPage();
    ASSERT_THAT(link, StartsWith("zuvo-manager://callback?token="));
    world.app().handleCallback(link);
    EXPECT_TRUE(waitForMainLayout());
}

TEST_F(SignInPageTest, theLinkSignsInWhileThePageWaits) {
    launchSignedOut();
    driver->click(QStringLiteral("browserButton"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("cancelWaitingButton")));
    world.app().handleCallback(linkOfOpenedPage());
    EXPECT_TRUE(waitForMainLayout());
}

TEST_F(SignInPageTest, escapeLeavesTheWaiting) {
    launchSignedOut();
    driver->click(QStringLiteral("browserButton"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("cancelWaitingButton")));
    driver->press(Qt::Key_Escape);
    EXPECT_TRUE(driver->waitFor(QStringLiteral("browserButton")));
    EXPECT_FALSE(driver->shows(QStringLiteral("cancelWaitingButton")));
}

TEST_F(SignInPageTest, aRefusedLinkShowsItsErrorBeneathTheWaiting) {
    launchSignedOut();
    driver->click(QStringLiteral("browserButton"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("cancelWaitingButton")));
    world.services.fail(standin::Service::me, standin::Failure::status(401, "Unauthorized"));
    world.app().handleCallback("zuvo-manager://callback?token=zuvo_old");
    EXPECT_TRUE(driver->waitFor(QStringLiteral("errorView")));
    EXPECT_TRUE(driver->shows(QStringLiteral("cancelWaitingButton")));
}

TEST_F(SignInPageTest, aLinkWithoutATokenChangesNothing) {
    launchSignedOut();
    for (const auto* link :
         {"zuvo-manager://callback", "zuvo-manager://open?token=a", "http://callback?token=zuvo_a", "no link", ""})
        world.app().handleCallback(link);
    runEventLoop(std::chrono::milliseconds(50));
    EXPECT_EQ(requestsForMe(), 0U);
    EXPECT_TRUE(driver->shows(QStringLiteral("browserButton")));
    EXPECT_FALSE(driver->shows(QStringLiteral("errorView")));
}

TEST_F(SignInPageTest, whoeverWasSignedInBeforeIsNotAskedAgain) {
    launchSignedIn();
    EXPECT_TRUE(waitForMainLayout());
    EXPECT_THAT(world.desktop->urls, IsEmpty());
}

// A sign-in link that nobody here asked for

TEST_F(SignInPageTest, aLinkOfOthersIsAskedAboutBeforeTheAccountChanges) {
    launchSignedIn();
    ASSERT_TRUE(waitForMainLayout());
    const auto former = world.app().authManager()->getToken();
    world.services.setAccount({"u2", "Eve", "eve@example.com", 1, "Free"});
    world.app().handleCallback("zuvo-manager://callback?token=zuvo_eve");
    ASSERT_TRUE(waitUntil([this] { return driver->focusedName() == QStringLiteral("keepButton"); }));
    EXPECT_TRUE(driver->showsText(world.content().signInQuestion()));
    EXPECT_TRUE(
        world.content().signInQuestion().startsWith(QStringLiteral("Sign in as Eve (eve@example.com) instead")));
    driver->press(Qt::Key_Escape);
    ASSERT_TRUE(driver->waitUntilGone(QStringLiteral("keepButton")));
    EXPECT_EQ(world.app().authManager()->getToken(), former);

    world.app().handleCallback("zuvo-manager://callback?token=zuvo_eve");
    ASSERT_TRUE(driver->waitFor(QStringLiteral("proceedButton")));
    driver->click(QStringLiteral("proceedButton"));
    EXPECT_TRUE(waitUntil([this] { return world.app().authManager()->getToken() == "zuvo_eve"; }));
    EXPECT_EQ(world.app().authManager()->userName(), "Eve");
}

TEST_F(SignInPageTest, aLinkOfOthersSignsNobodyInWhereNobodyIs) {
    launchSignedOut();
    world.app().handleCallback("zuvo-manager://callback?token=zuvo_eve");
    ASSERT_TRUE(waitUntil([this] { return driver->focusedName() == QStringLiteral("keepButton"); }));
    EXPECT_FALSE(world.content().isSignedIn());
    EXPECT_FALSE(std::filesystem::exists(world.tokenFile()));
    driver->click(QStringLiteral("proceedButton"));
    EXPECT_TRUE(waitForMainLayout());
}
