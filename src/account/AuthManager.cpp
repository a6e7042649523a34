#include "account/AuthManager.h"

#include "account/CallbackUrl.h"
#include "base/Files.h"
#include "base/Text.h"
#include "model/FileLimits.h"
#include "platform/FileSystem.h"
#include "platform/TopLevelTask.h"

#include <QPointer>
#include <exception>
#include <filesystem>
#include <utility>

namespace zuvo {

namespace {

constexpr int unauthorized = 401;

std::optional<TokenFile> readTokenFile(const std::string& path) {
    const auto text = readTextFile(path, FileLimits::token);
    return text ? decodeRecordText<TokenFile>(*text).value : std::nullopt;
}

} // namespace

AuthManager::AuthManager(APIClient client, std::shared_ptr<DesktopOpener> desktop, std::string tokenFile, Clock clock)
    : m_client(std::move(client)),
      m_desktop(std::move(desktop)),
      m_tokenFile(std::move(tokenFile)),
      m_clock(std::move(clock)) {
    loadStoredToken();
}

void AuthManager::signIn() {
    const auto& addresses = m_client.addresses();
    if (addresses.isRefused()) {
        setErrorMessage(addresses.refusal);
        return;
    }
    m_signInBegun = m_clock();
    (void)m_desktop->openUrl(addresses.authURL);
}

QCoro::Task<void> AuthManager::signInWithToken(std::string token) {
    const QPointer<AuthManager> self(this);
    const auto trimmed = trimWhiteSpace(token);
    const auto user = co_await ownerOf(trimmed);
    if (user && !self.isNull())
        keepSignIn(trimmed, *user);
}

QCoro::Task<void> AuthManager::offerSignIn(std::string token) {
    const QPointer<AuthManager> self(this);
    const auto trimmed = trimWhiteSpace(token);
    auto user = co_await ownerOf(trimmed);
    if (!user || self.isNull())
        co_return;
    auto ended = m_state;
    ended.isLoading = false;
    setState(std::move(ended));
    if (!self.isNull())
        setOffer(trimmed, std::move(user));
}

QCoro::Task<std::optional<UserInfo>> AuthManager::ownerOf(std::string trimmedToken) {
    const QPointer<AuthManager> self(this);
    if (trimmedToken.empty()) {
        setErrorMessage("Please enter a valid token");
        co_return std::nullopt;
    }
    auto waiting = m_state;
    waiting.isLoading = true;
    waiting.errorMessage.reset();
    setState(std::move(waiting));

    std::optional<UserInfo> user;
    std::string failure;
    try {
        user = co_await m_client.validateToken(trimmedToken);
    } catch (const std::exception& error) { // an APIError; any other would leave `isLoading` set
        failure = error.what();
    }
    if (!user && !self.isNull()) {
        auto ended = m_state;
        ended.isLoading = false;
        ended.errorMessage = std::move(failure);
        setState(std::move(ended));
    }
    co_return user;
}

void AuthManager::keepSignIn(const std::string& token, const UserInfo& user) {
    const auto error = saveToken(token, user);
    if (!error)
        setToken(token);
    auto ended = error ? m_state : signedInState(user);
    ended.isLoading = false;
    if (error)
        ended.errorMessage = error.message();
    setState(std::move(ended));
}

void AuthManager::signOut() {
    setToken(std::nullopt);
    std::error_code ignored;
    std::filesystem::remove(m_tokenFile, ignored);
    State signedOut;
    signedOut.isLoading = m_state.isLoading;
    signedOut.errorMessage = m_state.errorMessage;
    setState(std::move(signedOut));
}

QCoro::Task<void> AuthManager::refreshUser() {
    if (!m_token)
        co_return;
    const QPointer<AuthManager> self(this);
    const auto number = m_tokenNumber;
    std::optional<UserInfo> user;
    bool isRefused = false;
    try {
        user = co_await m_client.getMe(*m_token);
    } catch (const APIError& error) {
        isRefused = error.kind() == APIError::Kind::httpError && error.statusCode() == unauthorized;
    }
    if (self.isNull() || m_tokenNumber != number)
        co_return;
    if (user)
        setState(signedInState(*user));
    else if (isRefused)
        signOut();
}

void AuthManager::handleCallback(const std::string& url) {
    auto token = tokenOfCallbackUrl(url);
    if (!token)
        return;
    if (wasSignInBegunLately())
        startTopLevelTask(this, "sign-in by link",
                          [this, token = std::move(*token)] { return signInWithToken(token); });
    else
        startTopLevelTask(this, "sign-in link of others",
                          [this, token = std::move(*token)] { return offerSignIn(token); });
}

bool AuthManager::wasSignInBegunLately() const {
    if (!m_signInBegun)
        return false;
    const std::chrono::milliseconds elapsed(m_signInBegun->msecsTo(m_clock()));
    return elapsed >= std::chrono::milliseconds(0) && elapsed <= signInLinkPatience;
}

void AuthManager::acceptOfferedUser() {
    const auto user = m_offeredUser;
    const auto token = m_offeredToken;
    const QPointer<AuthManager> self(this);
    declineOfferedUser();
    if (user && !self.isNull())
        keepSignIn(token, *user);
}

void AuthManager::declineOfferedUser() {
    if (m_offeredUser)
        setOffer({}, std::nullopt);
}

void AuthManager::setOffer(std::string token, std::optional<UserInfo> user) {
    m_offeredToken = std::move(token);
    m_offeredUser = std::move(user);
    Q_EMIT offeredUserChanged();
}

void AuthManager::loadStoredToken() {
    auto stored = readTokenFile(m_tokenFile);
    if (!stored)
        return;
    // An earlier version may have left both open to others.
    makePrivate(m_tokenFile);
    makePrivate(std::filesystem::path(m_tokenFile).parent_path().string());
    setToken(std::move(stored->token));
    auto state = m_state;
    state.userName = std::move(stored->name).value_or(state.userName);
    state.userEmail = std::move(stored->email).value_or(state.userEmail);
    setState(std::move(state));
    startTopLevelTask(this, "refresh of the account", [this] { return refreshUser(); });
}

std::error_code AuthManager::saveToken(const std::string& token, const UserInfo& user) const {
    const auto folder = std::filesystem::path(m_tokenFile).parent_path().string();
    if (const auto error = makePrivateFolder(folder, folder))
        return error;
    const auto text = compactText(encodeRecord(TokenFile{token, user.email, user.name}));
    if (!text)
        return std::make_error_code(std::errc::invalid_argument);
    return fileReplacementError(m_tokenFile, *text);
}

void AuthManager::setState(State state) {
    const auto before = std::exchange(m_state, std::move(state));
    const auto after = m_state; // a slot may change it again
    const QPointer<AuthManager> self(this);
    const auto tell = [&self](bool hasChanged, void (AuthManager::*changed)()) {
        if (hasChanged && !self.isNull())
            Q_EMIT(self.data()->*changed)();
    };
    tell(before.userName != after.userName, &AuthManager::userNameChanged);
    tell(before.userEmail != after.userEmail, &AuthManager::userEmailChanged);
    tell(before.credits != after.credits, &AuthManager::creditsChanged);
    tell(before.plan != after.plan, &AuthManager::planChanged);
    tell(before.errorMessage != after.errorMessage, &AuthManager::errorMessageChanged);
    tell(before.isLoading != after.isLoading, &AuthManager::isLoadingChanged);
    tell(before.isSignedIn != after.isSignedIn, &AuthManager::isSignedInChanged);
}

void AuthManager::setErrorMessage(std::string message) {
    auto state = m_state;
    state.errorMessage = std::move(message);
    setState(std::move(state));
}

void AuthManager::setToken(std::optional<std::string> token) {
    m_token = std::move(token);
    ++m_tokenNumber;
}

AuthManager::State AuthManager::signedInState(const UserInfo& user) const {
    auto state = m_state;
    state.userName = user.name;
    state.userEmail = user.email;
    state.credits = user.credits;
    state.plan = user.plan;
    state.isSignedIn = true;
    return state;
}

} // namespace zuvo
