#include "ui/SignInViewModel.h"

#include "platform/ForeignWords.h"
#include "platform/TopLevelTask.h"

namespace zuvo {

namespace {

/// Holds the manager until its answer has come, whatever becomes of the page.
QCoro::Task<> signInWith(std::shared_ptr<AuthManager> manager, std::string token) {
    co_await manager->signInWithToken(std::move(token));
}

} // namespace

SignInViewModel::SignInViewModel(std::shared_ptr<AuthManager> authManager, QObject* parent)
    : QObject(parent), m_authManager(std::move(authManager)) {
    connect(m_authManager.get(), &AuthManager::isLoadingChanged, this, &SignInViewModel::isLoadingChanged);
    connect(m_authManager.get(), &AuthManager::errorMessageChanged, this, &SignInViewModel::errorMessageChanged);
}

QString SignInViewModel::stage() const {
    if (m_isWaitingForCallback)
        return QStringLiteral("waiting");
    return m_showTokenField ? QStringLiteral("token") : QStringLiteral("choices");
}

void SignInViewModel::setManualToken(const QString& token) {
    if (token == m_manualToken)
        return;
    const bool couldSubmit = canSubmitToken();
    m_manualToken = token;
    Q_EMIT manualTokenChanged();
    if (couldSubmit != canSubmitToken())
        Q_EMIT canSubmitTokenChanged();
}

QString SignInViewModel::tokenButtonText() const {
    return m_authManager->isLoading() ? QStringLiteral("Verifying...") : QStringLiteral("Sign In");
}

QString SignInViewModel::errorMessage() const {
    return QString::fromStdString(pageText(m_authManager->errorMessage().value_or(std::string())));
}

void SignInViewModel::setWaiting(bool isWaiting) {
    if (m_isWaitingForCallback == isWaiting)
        return;
    m_isWaitingForCallback = isWaiting;
    Q_EMIT stageChanged();
}

void SignInViewModel::signInWithBrowser() {
    m_authManager->signIn();
    setWaiting(true);
}

void SignInViewModel::cancelWaiting() {
    setWaiting(false);
}

void SignInViewModel::toggleTokenField() {
    m_showTokenField = !m_showTokenField;
    if (!m_isWaitingForCallback)
        Q_EMIT stageChanged();
}

void SignInViewModel::submitToken() {
    if (!canSubmitToken())
        return;
    startTopLevelTask(this, "that signs in", [manager = m_authManager, token = m_manualToken.toStdString()] {
        return signInWith(manager, token);
    });
}

} // namespace zuvo
