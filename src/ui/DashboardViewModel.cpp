#include "ui/DashboardViewModel.h"

#include "platform/ForeignWords.h"
#include "platform/TopLevelTask.h"

#include <QPointer>
#include <QTextBoundaryFinder>
#include <functional>

namespace zuvo {

namespace {

QCoro::Task<> refreshed(std::shared_ptr<AuthManager> manager, std::function<void()> afterwards) {
    co_await manager->refreshUser();
    afterwards();
}

} // namespace

DashboardViewModel::DashboardViewModel(std::shared_ptr<AuthManager> authManager, std::shared_ptr<DesktopOpener> desktop,
                                       std::string billingUrl, QObject* parent)
    : QObject(parent),
      m_authManager(std::move(authManager)),
      m_desktop(std::move(desktop)),
      m_billingUrl(std::move(billingUrl)) {
    auto* manager = m_authManager.get();
    connect(manager, &AuthManager::userNameChanged, this, &DashboardViewModel::userChanged);
    connect(manager, &AuthManager::userEmailChanged, this, &DashboardViewModel::userChanged);
    connect(manager, &AuthManager::creditsChanged, this, &DashboardViewModel::userChanged);
    connect(manager, &AuthManager::planChanged, this, &DashboardViewModel::userChanged);
}

QString DashboardViewModel::initial() const {
    const auto name = QString::fromStdString(pageText(m_authManager->userName()));
    QTextBoundaryFinder letters(QTextBoundaryFinder::Grapheme, name);
    const auto end = letters.toNextBoundary();
    return end < 0 ? QString() : name.left(end).toUpper();
}

QString DashboardViewModel::name() const {
    const auto& name = m_authManager->userName();
    return name.empty() ? QStringLiteral("User") : QString::fromStdString(pageText(name));
}

QString DashboardViewModel::email() const {
    return QString::fromStdString(pageText(m_authManager->userEmail()));
}

QString DashboardViewModel::credits() const {
    return QString::number(m_authManager->credits());
}

QString DashboardViewModel::plan() const {
    const auto& plan = m_authManager->plan();
    return plan.empty() ? QStringLiteral("Free") : QString::fromStdString(pageText(plan));
}

bool DashboardViewModel::isPro() const {
    const auto plan = QString::fromStdString(m_authManager->plan()).toLower();
    return plan == QLatin1String("post") || plan == QLatin1String("pro") || plan == QLatin1String("studio");
}

QString DashboardViewModel::planBadge() const {
    return isPro() ? QStringLiteral("PRO") : QStringLiteral("FREE");
}

void DashboardViewModel::changeRefreshCount(int by) {
    const bool wasRefreshing = isRefreshing();
    m_refreshCount += by;
    if (wasRefreshing != isRefreshing())
        Q_EMIT isRefreshingChanged();
}

void DashboardViewModel::refresh() {
    changeRefreshCount(1);
    startTopLevelTask(this, "that refreshes the account", [this, manager = m_authManager] {
        return refreshed(manager, [page = QPointer<DashboardViewModel>(this)] {
            if (!page.isNull())
                page->changeRefreshCount(-1);
        });
    });
}

void DashboardViewModel::openBilling() {
    m_desktop->openUrl(m_billingUrl);
}

void DashboardViewModel::signOut() {
    m_authManager->signOut();
}

} // namespace zuvo
