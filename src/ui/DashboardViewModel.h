#pragma once

#include "account/AuthManager.h"
#include "platform/DesktopOpener.h"

#include <QObject>
#include <QString>
#include <memory>
#include <qqmlregistration.h>
#include <string>

namespace zuvo {

/// The account page: who is signed in, credits and plan as the service told them last.
class DashboardViewModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The shell makes one for each showing of the page")
    Q_PROPERTY(QString initial READ initial NOTIFY userChanged)
    Q_PROPERTY(QString name READ name NOTIFY userChanged)
    Q_PROPERTY(QString email READ email NOTIFY userChanged)
    Q_PROPERTY(QString credits READ credits NOTIFY userChanged)
    Q_PROPERTY(QString plan READ plan NOTIFY userChanged)
    Q_PROPERTY(bool isPro READ isPro NOTIFY userChanged)
    Q_PROPERTY(QString planBadge READ planBadge NOTIFY userChanged)
    Q_PROPERTY(bool isRefreshing READ isRefreshing NOTIFY isRefreshingChanged)
public:
    DashboardViewModel(std::shared_ptr<AuthManager> authManager, std::shared_ptr<DesktopOpener> desktop,
                       std::string billingUrl, QObject* parent = nullptr);

    [[nodiscard]] QString initial() const; ///< the name's first letter, upper-cased; empty without a name
    [[nodiscard]] QString name() const;    ///< "User" without a name
    [[nodiscard]] QString email() const;
    [[nodiscard]] QString credits() const;
    [[nodiscard]] QString plan() const; ///< "Free" if the service names none
    [[nodiscard]] bool isPro() const;   ///< for the plans post, pro and studio, in any case
    [[nodiscard]] QString planBadge() const;
    [[nodiscard]] bool isRefreshing() const { return m_refreshCount > 0; }

    /// Asks the service anew.
    Q_INVOKABLE void refresh();
    /// Opens the billing page in the browser.
    Q_INVOKABLE void openBilling();
    Q_INVOKABLE void signOut();

Q_SIGNALS:
    void userChanged();
    void isRefreshingChanged();

private:
    void changeRefreshCount(int by);

    std::shared_ptr<AuthManager> m_authManager;
    std::shared_ptr<DesktopOpener> m_desktop;
    std::string m_billingUrl;
    int m_refreshCount = 0;
};

} // namespace zuvo
