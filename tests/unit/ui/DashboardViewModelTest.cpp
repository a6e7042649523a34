#include "ui/DashboardViewModel.h"

#include "AccountPageFixture.h"

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;

namespace {

class AccountPage : public AccountPageTest {
protected:
    [[nodiscard]] std::unique_ptr<DashboardViewModel> newPage() const {
        return std::make_unique<DashboardViewModel>(manager, desktop, client().addresses().billingURL);
    }

    /// The first letter that the page shows for this name.
    std::string initialOf(const std::string& name) {
        givenSignedIn(userAsJson(name));
        return page->initial().toStdString();
    }

    std::unique_ptr<DashboardViewModel> page = newPage();
};

} // namespace

TEST_F(AccountPage, showsWhoIsSignedIn) {
    givenSignedIn(userAsJson("Ada", "Studio", "1234567"));
    EXPECT_EQ(page->name(), QStringLiteral("Ada"));
    EXPECT_EQ(page->email(), QStringLiteral("ada@example.com"));
    EXPECT_EQ(page->credits(), QStringLiteral("1234567"));
    EXPECT_EQ(page->plan(), QStringLiteral("Studio"));
    EXPECT_EQ(page->initial(), QStringLiteral("A"));
}

TEST_F(AccountPage, beforeAnybodyIsKnownItSaysUserAndFree) {
    EXPECT_EQ(page->name(), QStringLiteral("User"));
    EXPECT_EQ(page->initial(), QString());
    EXPECT_EQ(page->email(), QString());
    EXPECT_EQ(page->credits(), QStringLiteral("0"));
    EXPECT_EQ(page->plan(), QStringLiteral("Free"));
    EXPECT_EQ(page->planBadge(), QStringLiteral("FREE"));
}

TEST_F(AccountPage, anEmptyNameIsUserWithoutALetter) {
    givenSignedIn(userAsJson(""));
    EXPECT_EQ(page->name(), QStringLiteral("User"));
    EXPECT_EQ(page->initial(), QString());
}

TEST_F(AccountPage, theLetterIsTheNamesFirstCharacterInCapitals) {
    EXPECT_EQ(initialOf("marta"), "M");
    EXPECT_EQ(initialOf("Bob"), "B");
    EXPECT_EQ(initialOf("émile"), "É");
    EXPECT_EQ(initialOf("e\u0301mile"), "E\u0301"); // written as two code points, one character
    EXPECT_EQ(initialOf("ñ"), "Ñ");
    EXPECT_EQ(initialOf("9to5"), "9");
    EXPECT_EQ(initialOf("林"), "林");
    EXPECT_EQ(initialOf("\U0001F468\u200D\U0001F469\u200D\U0001F467 family"),
              "\U0001F468\u200D\U0001F469\u200D\U0001F467");
    EXPECT_EQ(initialOf("\U0001F1EA\U0001F1F8 España"), "\U0001F1EA\U0001F1F8"); // a flag
}

TEST_F(AccountPage, theBadgeIsProForThreePlansInAnyCase) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"post", "PRO"},      {"pro", "PRO"},   {"studio", "PRO"},   {"Pro", "PRO"},     {"STUDIO", "PRO"},
        {"Post", "PRO"},      {"team", "FREE"}, {"", "FREE"},        {"Free", "FREE"},   {"pro ", "FREE"},
        {"prof", "FREE"},     {"PRO+", "FREE"}, {"studios", "FREE"}, {"proper", "FREE"}, {"FREE", "FREE"},
        {"\u0440ro", "FREE"}, // its first letter is Cyrillic
    };
    for (const auto& [plan, badge] : rows) {
        givenSignedIn(userAsJson("Ada", plan));
        EXPECT_EQ(page->planBadge().toStdString(), badge) << plan;
        EXPECT_EQ(page->isPro(), badge == "PRO") << plan;
        EXPECT_EQ(page->plan().toStdString(), plan.empty() ? "Free" : plan);
    }
}

TEST_F(AccountPage, itFollowsWhatTheServiceSaysNow) {
    givenSignedIn(userAsJson("Ada", "Studio", "42"));
    const QSignalSpy told(page.get(), &DashboardViewModel::userChanged);
    services->then(200, userAsJson("Ada", "Studio", "41"));
    page->refresh();
    ASSERT_TRUE(waitUntil([this] { return page->credits() == QStringLiteral("41"); }));
    EXPECT_EQ(told.count(), 1);
    services->then(200, userAsJson("Ada", "Studio", "41"));
    page->refresh();
    ASSERT_TRUE(waitUntil([this] { return !page->isRefreshing(); }));
    EXPECT_EQ(told.count(), 1); // nothing new, nothing told
}

TEST_F(AccountPage, itIsRefreshingUntilTheServiceHasAnswered) {
    givenSignedIn(userAsJson("Ada"));
    const QSignalSpy told(page.get(), &DashboardViewModel::isRefreshingChanged);
    bool during = false;
    calls->inside = [this, &during](std::size_t) { during = page->isRefreshing(); };
    services->then(200, userAsJson("Ada"));
    EXPECT_FALSE(page->isRefreshing());
    page->refresh();
    EXPECT_TRUE(page->isRefreshing()); // at once, so that the button takes no second click
    ASSERT_TRUE(waitUntil([this] { return !page->isRefreshing(); }));
    EXPECT_TRUE(during);
    EXPECT_EQ(told.count(), 2);
}

TEST_F(AccountPage, aRefreshThatFailsEndsTooAndChangesNothing) {
    givenSignedIn(userAsJson("Ada"));
    services->thenFails("no network");
    page->refresh();
    ASSERT_TRUE(waitUntil([this] { return !page->isRefreshing(); }));
    EXPECT_EQ(page->name(), QStringLiteral("Ada"));
    EXPECT_TRUE(manager->isSignedIn());
}

TEST_F(AccountPage, aRefreshWithoutATokenEndsWithoutARequest) {
    page->refresh();
    EXPECT_TRUE(waitUntil([this] { return !page->isRefreshing(); }));
    EXPECT_EQ(calls->count(), 0U);
}

TEST_F(AccountPage, ofTwoRefreshesTheLaterEndEndsIt) {
    givenSignedIn(userAsJson("Ada"));
    services->then(200, userAsJson("Ada", "Studio", "1"));
    services->then(200, userAsJson("Ada", "Studio", "2"));
    const QSignalSpy told(page.get(), &DashboardViewModel::isRefreshingChanged);
    page->refresh();
    page->refresh();
    ASSERT_TRUE(waitUntil([this] { return !page->isRefreshing(); }));
    EXPECT_EQ(page->credits(), QStringLiteral("2"));
    EXPECT_EQ(told.count(), 2);
}

TEST_F(AccountPage, aRefreshAnsweredWith401SignsOut) {
    givenSignedIn(userAsJson("Ada"));
    services->then(401, "{}");
    page->refresh();
    EXPECT_TRUE(waitUntil([this] { return !manager->isSignedIn(); }));
}

TEST_F(AccountPage, bothBillingButtonsOpenTheBillingPage) {
    page->openBilling();
    page->openBilling();
    EXPECT_THAT(desktop->urls, ElementsAre("https://service.test/billing", "https://service.test/billing"));
}

TEST_F(AccountPage, signingOutForgetsTheUser) {
    givenSignedIn(userAsJson("Ada"));
    page->signOut();
    EXPECT_FALSE(manager->isSignedIn());
    EXPECT_EQ(manager->getToken(), std::nullopt);
    EXPECT_EQ(page->name(), QStringLiteral("User"));
    EXPECT_EQ(page->credits(), QStringLiteral("0"));
}

TEST_F(AccountPage, aPageThatIsGoneWhileItRefreshesIsNotMissed) {
    givenSignedIn(userAsJson("Ada"));
    services->then(200, userAsJson("Bob"));
    calls->inside = [this](std::size_t) { page.reset(); };
    page->refresh();
    EXPECT_TRUE(waitUntil([this] { return manager->userName() == "Bob"; }));
    EXPECT_EQ(page, nullptr);
}
