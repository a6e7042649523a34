#include "account/APIClient.h"

#include "base/Secrets.h"
#include "base/Text.h"
#include "model/Constants.h"
#include "platform/ForeignWords.h"

#include <QString>
#include <QUrl>
#include <array>

namespace zuvo {

namespace {

bool isAddress(const std::string& url) {
    return QUrl(QString::fromStdString(url), QUrl::StrictMode).isValid();
}

HttpRequest preparedRequest(std::string url, const std::optional<std::string>& token, std::string method,
                            std::optional<std::string> body, std::chrono::milliseconds timeout) {
    HttpRequest prepared;
    prepared.url = std::move(url);
    prepared.method = std::move(method);
    prepared.timeout = timeout;
    prepared.answerLimit = accountAnswerLimit;
    prepared.headers = {{"Content-Type", "application/json"},
                        {"User-Agent", std::string("Zuvo-Manager/") + Constants::App::version}};
    if (token)
        prepared.headers.emplace_back("Authorization", "Bearer " + *token);
    if (body)
        prepared.body = std::move(*body);
    return prepared;
}

template <class Record>
Record decoded(const std::string& body) {
    auto outcome = decodeRecordText<Record>(body);
    if (!outcome.value)
        throw APIError::decodingError(std::move(outcome.failure));
    return std::move(*outcome.value);
}

/// What the service says, for a page: without the token, should it have repeated that.
std::string wordsOf(const std::string& body, const std::optional<std::string>& token) {
    const std::array keys = {token.value_or("")};
    return pageText(withMaskedKeys(body, keys));
}

/// Tasks take all they need as arguments, so that they outlive the client that started them.
QCoro::Task<std::string> send(std::shared_ptr<HttpClient> http, AccountAddresses addresses, std::string endpoint,
                              std::optional<std::string> token, std::string method, std::optional<std::string> body,
                              std::chrono::milliseconds timeout) {
    if (addresses.isRefused())
        throw APIError::networkError(addresses.refusal);
    auto url = addresses.baseURL + endpoint;
    if (!isAddress(url))
        throw APIError::invalidURL();
    auto prepared = preparedRequest(std::move(url), token, std::move(method), std::move(body), timeout);
    const auto answer = co_await http->send(std::move(prepared));
    if (answer.hasFailed())
        throw APIError::networkError(answer.failure);
    if (answer.status == 0)
        throw APIError::invalidResponse();
    if (!answer.isSuccess())
        throw APIError::httpError(answer.status,
                                  isValidUtf8(answer.body) ? wordsOf(answer.body, token) : "Unknown error");
    co_return answer.body;
}

QCoro::Task<UserInfo> userInfoOf(QCoro::Task<std::string> answer) {
    const auto body = co_await std::move(answer);
    co_return decoded<UserInfo>(body);
}

QCoro::Task<VersionInfo> versionInfoOf(QCoro::Task<std::string> answer) {
    const auto body = co_await std::move(answer);
    co_return decoded<VersionInfo>(body);
}

} // namespace

QCoro::Task<std::string> APIClient::request(std::string endpoint, std::optional<std::string> token, std::string method,
                                            std::optional<std::string> body) const {
    return send(m_http, m_addresses, std::move(endpoint), std::move(token), std::move(method), std::move(body),
                m_timeout);
}

QCoro::Task<UserInfo> APIClient::getMe(std::string token) const {
    return userInfoOf(request("/me", std::move(token)));
}

QCoro::Task<VersionInfo> APIClient::getVersion() const {
    return versionInfoOf(request("/version"));
}

QCoro::Task<UserInfo> APIClient::validateToken(std::string token) const {
    return getMe(std::move(token));
}

} // namespace zuvo
