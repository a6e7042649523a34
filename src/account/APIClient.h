#pragma once

#include "account/APIError.h"
#include "model/Account.h"
#include "platform/Http.h"
#include "platform/ServiceAddresses.h"

#include <QCoroTask>
#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace zuvo {

/// The platform's own time-out.
inline constexpr std::chrono::seconds platformTimeout{60};

/// Bytes of the longest answer of the account service.
inline constexpr qint64 accountAnswerLimit = 1024LL * 1024;

/// The client of the account service. Answers are limited to `accountAnswerLimit`, and the service's own words in a
/// failure to those of `pageText`, with the token masked. It keeps nothing between requests, and each is sent once.
/// Copies share the HTTP client. A task that runs needs neither the object nor its copy any more.
///
/// Every operation fails by throwing an `APIError`. An address that `ZUVO_SERVICE_URL` names and that is refused is a
/// networkError with the reason, before anything is sent.
class APIClient {
public:
    /// A request fails once nothing has come or gone for `timeout`.
    APIClient(std::shared_ptr<HttpClient> http, AccountAddresses addresses,
              std::chrono::milliseconds timeout = platformTimeout)
        : m_http(std::move(http)), m_addresses(std::move(addresses)), m_timeout(timeout) {}

    /// The body of the answer to {baseURL}{endpoint}, which are joined as they stand.
    [[nodiscard]] QCoro::Task<std::string> request(std::string endpoint, std::optional<std::string> token = {},
                                                   std::string method = "GET",
                                                   std::optional<std::string> body = {}) const;

    /// Who the token belongs to.
    [[nodiscard]] QCoro::Task<UserInfo> getMe(std::string token) const;

    /// The newest plugin version; asked without a token.
    [[nodiscard]] QCoro::Task<VersionInfo> getVersion() const;

    /// A token is valid if the service says whose it is: the same as `getMe`.
    [[nodiscard]] QCoro::Task<UserInfo> validateToken(std::string token) const;

    // What it was made with.
    [[nodiscard]] const AccountAddresses& addresses() const { return m_addresses; }
    [[nodiscard]] const std::shared_ptr<HttpClient>& http() const { return m_http; }
    [[nodiscard]] std::chrono::milliseconds timeout() const { return m_timeout; }

private:
    std::shared_ptr<HttpClient> m_http;
    AccountAddresses m_addresses;
    std::chrono::milliseconds m_timeout;
};

} // namespace zuvo
