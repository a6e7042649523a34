#include "ui/ContentViewModel.h"

#include "model/Constants.h"
#include "ui/DashboardViewModel.h"
#include "ui/SignInViewModel.h"
#include "ui/UpdateViewModel.h"

#include <QVariantMap>

namespace zuvo {

namespace {

QVariantMap entry(int tab, const QString& label, const QString& icon) {
    return {{QStringLiteral("tab"), tab}, {QStringLiteral("label"), label}, {QStringLiteral("icon"), icon}};
}

} // namespace

ContentViewModel::ContentViewModel(ShellServices services, QObject* parent)
    : QObject(parent), m_services(std::move(services)), m_isSignedIn(m_services.authManager->isSignedIn()) {
    connect(m_services.authManager.get(), &AuthManager::isSignedInChanged, this, &ContentViewModel::followSignIn);
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
