#include "ui/SignInViewModel.h"

#include "AccountPageFixture.h"

#include <QPointer>

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class SignInPage : public AccountPageTest {
protected:
    std::unique_ptr<SignInViewModel> page = std::make_unique<SignInViewModel>(manager);
};

} // namespace

TEST_F(SignInPage, beginsWithTheTwoChoices) {
    EXPECT_EQ(page->stage(), QStringLiteral("choices"));
    EXPECT_EQ(page->manualToken(), QString());
    EXPECT_FALSE(page->showTokenField());
    EXPECT_FALSE(page->isWaitingForCallback());
    EXPECT_FALSE(page->canSubmitToken());
    EXPECT_EQ(page->tokenButtonText(), QStringLiteral("Sign In"));
    EXPECT_EQ(page->errorMessage(), QString());
}

TEST_F(SignInPage, theBrowserIsOpenedAndWaitedFor) {
    const QSignalSpy stages(page.get(), &SignInViewModel::stageChanged);
    page->signInWithBrowser();
    EXPECT_THAT(desktop->urls, ElementsAre("https://service.test/plugin-auth"));
    EXPECT_EQ(page->stage(), QStringLiteral("waiting"));
    page->signInWithBrowser(); // a double click asks the browser again, but changes nothing here
    EXPECT_EQ(desktop->urls.size(), 2U);
    EXPECT_EQ(stages.count(), 1);
    EXPECT_EQ(calls->count(), 0U);
}

TEST_F(SignInPage, waitingComesBeforeTheTokenField) {
    const QSignalSpy stages(page.get(), &SignInViewModel::stageChanged);
    page->toggleTokenField();
    EXPECT_EQ(page->stage(), QStringLiteral("token"));
    page->signInWithBrowser();
    EXPECT_EQ(page->stage(), QStringLiteral("waiting"));
    EXPECT_EQ(stages.count(), 2);
    page->toggleTokenField(); // unseen while the browser is waited for
    EXPECT_EQ(page->stage(), QStringLiteral("waiting"));
    EXPECT_EQ(stages.count(), 2);
    page->cancelWaiting();
    EXPECT_EQ(page->stage(), QStringLiteral("choices"));
    EXPECT_EQ(stages.count(), 3);
}

TEST_F(SignInPage, theTokenFieldIsFlipped) {
    page->toggleTokenField();
    EXPECT_EQ(page->stage(), QStringLiteral("token"));
    page->toggleTokenField();
    EXPECT_EQ(page->stage(), QStringLiteral("choices"));
}

TEST_F(SignInPage, cancellingWhatDoesNotWaitTellsNothing) {
    const QSignalSpy stages(page.get(), &SignInViewModel::stageChanged);
    page->cancelWaiting();
    EXPECT_EQ(stages.count(), 0);
}

TEST_F(SignInPage, aLinkThatComesAfterTheCancellingStillSignsIn) {
    page->signInWithBrowser();
    page->cancelWaiting();
    EXPECT_EQ(page->stage(), QStringLiteral("choices"));
    services->then(200, userAsJson("Ada"));
    manager->handleCallback("zuvo-manager://callback?token=zuvo_late");
    EXPECT_TRUE(waitUntil([this] { return manager->isSignedIn(); }));
    EXPECT_EQ(manager->getToken(), "zuvo_late");
}

TEST_F(SignInPage, aLinkWithoutATokenChangesNothing) {
    page->signInWithBrowser();
    for (const auto* url : {"zuvo-manager://callback", "zuvo-manager://callback?code=1", "https://callback?token=a",
                            "zuvo-manager://other?token=a"})
        manager->handleCallback(url);
    turn();
    EXPECT_EQ(calls->count(), 0U);
    EXPECT_EQ(page->stage(), QStringLiteral("waiting"));
    EXPECT_EQ(page->errorMessage(), QString());
}

TEST_F(SignInPage, theTokenButtonIsEnabledByAnyText) {
    const QSignalSpy tokens(page.get(), &SignInViewModel::manualTokenChanged);
    const QSignalSpy enabled(page.get(), &SignInViewModel::canSubmitTokenChanged);
    page->setManualToken(QStringLiteral("z"));
    EXPECT_TRUE(page->canSubmitToken());
    page->setManualToken(QStringLiteral("zu"));
    page->setManualToken(QStringLiteral("zu"));
    EXPECT_EQ(tokens.count(), 2);
    EXPECT_EQ(enabled.count(), 1);
    page->setManualToken(QString());
    EXPECT_FALSE(page->canSubmitToken());
    EXPECT_EQ(enabled.count(), 2);
}

TEST_F(SignInPage, anEmptyTokenIsNotSent) {
    page->submitToken();
    turn();
    EXPECT_EQ(calls->count(), 0U);
    EXPECT_EQ(page->errorMessage(), QString());
}

TEST_F(SignInPage, aTokenOfOnlyBlanksIsRefusedWithoutARequest) {
    page->setManualToken(QStringLiteral("   "));
    page->submitToken();
    EXPECT_TRUE(waitUntil([this] { return !page->errorMessage().isEmpty(); }));
    EXPECT_EQ(page->errorMessage(), QStringLiteral("Please enter a valid token"));
    EXPECT_EQ(calls->count(), 0U);
    EXPECT_EQ(page->manualToken(), QStringLiteral("   "));
}

TEST_F(SignInPage, theButtonSaysVerifyingWhileTheServiceIsAsked) {
    services->then(200, userAsJson("Ada"));
    QString during;
    calls->inside = [this, &during](std::size_t) { during = page->tokenButtonText(); };
    const QSignalSpy loading(page.get(), &SignInViewModel::isLoadingChanged);
    page->setManualToken(QStringLiteral(" zuvo_ada "));
    page->submitToken();
    EXPECT_EQ(page->tokenButtonText(), QStringLiteral("Sign In"));
    ASSERT_TRUE(waitUntil([this] { return manager->isSignedIn(); }));
    EXPECT_EQ(during, QStringLiteral("Verifying..."));
    EXPECT_EQ(page->tokenButtonText(), QStringLiteral("Sign In"));
    EXPECT_EQ(loading.count(), 2);
    EXPECT_EQ(manager->getToken(), "zuvo_ada");
}

TEST_F(SignInPage, aRefusalIsShownAndKeepsWhatWasTyped) {
    services->thenFails("The host is not there");
    page->toggleTokenField();
    page->setManualToken(QStringLiteral("zuvo_wrong"));
    const QSignalSpy errors(page.get(), &SignInViewModel::errorMessageChanged);
    page->submitToken();
    ASSERT_TRUE(waitUntil([this] { return !page->errorMessage().isEmpty(); }));
    EXPECT_EQ(page->errorMessage().toStdString(), manager->errorMessage());
    EXPECT_TRUE(page->errorMessage().contains(QStringLiteral("The host is not there")));
    EXPECT_EQ(errors.count(), 1);
    EXPECT_EQ(page->manualToken(), QStringLiteral("zuvo_wrong"));
    EXPECT_EQ(page->stage(), QStringLiteral("token"));
    EXPECT_EQ(page->tokenButtonText(), QStringLiteral("Sign In"));
    EXPECT_TRUE(page->canSubmitToken());
    EXPECT_FALSE(manager->isSignedIn());
}

TEST_F(SignInPage, anErrorThatStandsAtTheBeginningIsShown) {
    services->then(401, "{}");
    runToEnd(manager->signInWithToken("zuvo_wrong"));
    const SignInViewModel later(manager);
    EXPECT_FALSE(later.errorMessage().isEmpty());
}

TEST_F(SignInPage, ofTwoClicksBothAskAndTheLastAnswerWins) {
    services->then(200, userAsJson("Ada"));
    services->then(200, userAsJson("Bob"));
    page->setManualToken(QStringLiteral("zuvo_ada"));
    page->submitToken();
    page->submitToken();
    EXPECT_TRUE(waitUntil([this] { return manager->userName() == "Bob" && !manager->isLoading(); }));
    EXPECT_EQ(services->requests.size(), 2U);
}

TEST_F(SignInPage, aPageThatIsGoneWhileTheServiceIsAskedDoesNotStopTheSignIn) {
    services->then(200, userAsJson("Ada"));
    calls->inside = [this](std::size_t) { page.reset(); };
    page->setManualToken(QStringLiteral("zuvo_ada"));
    page->submitToken();
    EXPECT_TRUE(waitUntil([this] { return manager->isSignedIn(); }));
    EXPECT_EQ(page, nullptr);
}
