#pragma once

#include "account/AuthManager.h"

#include <QObject>
#include <QString>
#include <memory>
#include <qqmlregistration.h>

namespace zuvo {

/// The page that stands until somebody is signed in.
class SignInViewModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The shell makes one for each showing of the page")
    Q_PROPERTY(QString stage READ stage NOTIFY stageChanged)
    Q_PROPERTY(QString manualToken READ manualToken WRITE setManualToken NOTIFY manualTokenChanged)
    Q_PROPERTY(bool canSubmitToken READ canSubmitToken NOTIFY canSubmitTokenChanged)
    Q_PROPERTY(QString tokenButtonText READ tokenButtonText NOTIFY isLoadingChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
public:
    explicit SignInViewModel(std::shared_ptr<AuthManager> authManager, QObject* parent = nullptr);

    /// What stands in the middle: "waiting" for the browser, the "token" field, or the two "choices".
    [[nodiscard]] QString stage() const;

    [[nodiscard]] const QString& manualToken() const { return m_manualToken; }
    void setManualToken(const QString& token);
    [[nodiscard]] bool showTokenField() const { return m_showTokenField; }
    [[nodiscard]] bool isWaitingForCallback() const { return m_isWaitingForCallback; }

    [[nodiscard]] bool canSubmitToken() const { return !m_manualToken.isEmpty(); }
    /// "Verifying..." while the service is asked.
    [[nodiscard]] QString tokenButtonText() const;
    [[nodiscard]] QString errorMessage() const; ///< empty if there is none

    /// Opens the browser and waits. A sign-in link that comes later signs in whether or not the page still waits.
    Q_INVOKABLE void signInWithBrowser();
    Q_INVOKABLE void cancelWaiting();
    Q_INVOKABLE void toggleTokenField();
    Q_INVOKABLE void submitToken();

Q_SIGNALS:
    void stageChanged();
    void manualTokenChanged();
    void canSubmitTokenChanged();
    void isLoadingChanged();
    void errorMessageChanged();

private:
    void setWaiting(bool isWaiting);

    std::shared_ptr<AuthManager> m_authManager;
    QString m_manualToken;
    bool m_showTokenField = false;
    bool m_isWaitingForCallback = false;
};

} // namespace zuvo
