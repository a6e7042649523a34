#pragma once

#include "account/AuthManager.h"
#include "platform/DesktopOpener.h"
#include "plugin/PluginManager.h"
#include "plugin/UpdateManager.h"
#include "ui/MineViewModel.h"

#include <QObject>
#include <QString>
#include <QVariantList>
#include <functional>
#include <memory>
#include <qqmlregistration.h>
#include <string>

namespace zuvo {

/// What the shell hands to its pages.
struct ShellServices {
    std::shared_ptr<AuthManager> authManager;
    std::shared_ptr<UpdateManager> updateManager;
    std::shared_ptr<PluginManager> pluginManager;
    std::shared_ptr<DesktopOpener> desktop;
    std::string billingUrl;
    std::function<MineTools()> makeMineTools; ///< new ones for each flow
};

/// The window's content: the sign-in page, or the sidebar with the page of its chosen entry. Only that page exists:
/// leaving it discards it with all that it held.
class ContentViewModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The application makes the one")
    Q_PROPERTY(bool isSignedIn READ isSignedIn NOTIFY pageChanged)
    Q_PROPERTY(int selectedTab READ selectedTab WRITE setSelectedTab NOTIFY selectedTabChanged)
    Q_PROPERTY(QVariantList sidebar READ sidebar CONSTANT)
    Q_PROPERTY(QString pageName READ pageName NOTIFY pageChanged)
    Q_PROPERTY(QObject* page READ page NOTIFY pageChanged)
    Q_PROPERTY(QString appVersion READ appVersion CONSTANT)
    Q_PROPERTY(QString signInQuestion READ signInQuestion NOTIFY signInQuestionChanged)
public:
    static constexpr int accountTab = 0;
    static constexpr int mineTab = 1;
    static constexpr int updatesTab = 2;

    explicit ContentViewModel(ShellServices services, QObject* parent = nullptr);
    ~ContentViewModel() override;

    [[nodiscard]] bool isSignedIn() const { return m_isSignedIn; }
    [[nodiscard]] int selectedTab() const { return m_selectedTab; }
    /// A number that no entry has shows nothing.
    void setSelectedTab(int tab);

    /// The entries from top to bottom: a map with `tab`, `label` and `icon` each.
    [[nodiscard]] static QVariantList sidebar();

    /// "SignInView", "MineView", "DashboardView", "UpdateView", or empty.
    [[nodiscard]] const QString& pageName() const { return m_pageName; }
    /// The view model of that page, owned by this object until the page changes; nothing if there is no page.
    [[nodiscard]] QObject* page() const { return m_page; }

    [[nodiscard]] static QString appVersion();

    /// What the user is asked about a sign-in link that was not begun here: "Sign in as ... instead of ...?" Empty if
    /// there is none.
    [[nodiscard]] QString signInQuestion() const;
    /// The answers to it; a yes counts only for the question that is asked now.
    Q_INVOKABLE void acceptSignIn(const QString& question);
    Q_INVOKABLE void declineSignIn();

Q_SIGNALS:
    void selectedTabChanged();
    void pageChanged();
    void signInQuestionChanged();

private:
    void followSignIn();
    void showPage();
    [[nodiscard]] QString wantedPageName() const;
    [[nodiscard]] QObject* makePage(const QString& name);

    ShellServices m_services;
    bool m_isSignedIn = false;
    int m_selectedTab = mineTab;
    QString m_pageName;
    QObject* m_page = nullptr;
};

} // namespace zuvo
