#include "ui/ContentViewModel.h"

#include "model/Constants.h"
#include "platform/ForeignWords.h"
#include "ui/DashboardViewModel.h"
#include "ui/SignInViewModel.h"
#include "ui/UpdateViewModel.h"

#include <QVariantMap>

namespace zuvo {

namespace {

QVariantMap entry(int tab, const QString& label, const QString& icon) {
    return {{QStringLiteral("tab"), tab}, {QStringLiteral("label"), label}, {QStringLiteral("icon"), icon}};
}

/// "Ada (ada@example.com)", with what the service gave of both, short enough for a question.
QString personWith(const std::string& name, const std::string& email) {
    const auto shortened = [](const std::string& text) {
        constexpr int most = 60;
        const auto line = QString::fromStdString(oneLine(text));
        return line.size() > most ? line.left(most) + QStringLiteral("…") : line;
    };
    if (name.empty() && email.empty())
        return QStringLiteral("an account without a name");
    if (name.empty() || email.empty())
        return shortened(name + email);
    return shortened(name) + QStringLiteral(" (") + shortened(email) + QLatin1Char(')');
}

} // namespace

ContentViewModel::ContentViewModel(ShellServices services, QObject* parent)
    : QObject(parent), m_services(std::move(services)), m_isSignedIn(m_services.authManager->isSignedIn()) {
    const auto* manager = m_services.authManager.get();
    connect(manager, &AuthManager::isSignedInChanged, this, &ContentViewModel::followSignIn);
    connect(manager, &AuthManager::offeredUserChanged, this, &ContentViewModel::signInQuestionChanged);
    showPage();
}

ContentViewModel::~ContentViewModel() = default;

QVariantList ContentViewModel::sidebar() {
    return {entry(mineTab, QStringLiteral("The Mine"), QStringLiteral("waveform.badge.magnifyingglass")),
            entry(accountTab, QStringLiteral("Account"), QStringLiteral("person.circle")),
            entry(updatesTab, QStringLiteral("Updates"), QStringLiteral("arrow.triangle.2.circlepath"))};
}

QString ContentViewModel::appVersion() {
    return QStringLiteral("v") + QString::fromUtf8(Constants::App::version);
}

QString ContentViewModel::signInQuestion() const {
    const auto& manager = *m_services.authManager;
    const auto& offered = manager.offeredUser();
    if (!offered)
        return {};
    const auto question = QStringLiteral("Sign in as ") + personWith(offered->name, offered->email);
    if (!manager.getToken())
        return question + QLatin1Char('?');
    return question + QStringLiteral(" instead of ") + personWith(manager.userName(), manager.userEmail()) +
           QLatin1Char('?');
}

void ContentViewModel::acceptSignIn(const QString& question) {
    if (question == signInQuestion())
        m_services.authManager->acceptOfferedUser();
}

void ContentViewModel::declineSignIn() {
    m_services.authManager->declineOfferedUser();
}

void ContentViewModel::setSelectedTab(int tab) {
    if (tab == m_selectedTab)
        return;
    m_selectedTab = tab;
    Q_EMIT selectedTabChanged();
    if (wantedPageName() != m_pageName)
        showPage();
}

void ContentViewModel::followSignIn() {
    if (m_services.authManager->isSignedIn() == m_isSignedIn)
        return;
    m_isSignedIn = !m_isSignedIn;
    showPage();
}

QString ContentViewModel::wantedPageName() const {
    if (!m_isSignedIn)
        return QStringLiteral("SignInView");
    switch (m_selectedTab) {
    case mineTab:
        return QStringLiteral("MineView");
    case accountTab:
        return QStringLiteral("DashboardView");
    case updatesTab:
        return QStringLiteral("UpdateView");
    default:
        return {};
    }
}

QObject* ContentViewModel::makePage(const QString& name) {
    if (name == QLatin1String("SignInView"))
        return new SignInViewModel(m_services.authManager, this);
    if (name == QLatin1String("MineView"))
        return new MineViewModel(m_services.makeMineTools(), this);
    if (name == QLatin1String("DashboardView"))
        return new DashboardViewModel(m_services.authManager, m_services.desktop, m_services.billingUrl, this);
    if (name == QLatin1String("UpdateView"))
        return new UpdateViewModel(m_services.updateManager, m_services.pluginManager, this);
    return nullptr;
}

void ContentViewModel::showPage() {
    auto* left = m_page;
    m_pageName = wantedPageName();
    m_page = makePage(m_pageName);
    Q_EMIT pageChanged();
    // What stood on screen may still look at it until the event loop turns.
    if (left != nullptr)
        left->deleteLater();
}

} // namespace zuvo
