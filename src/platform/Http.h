#pragma once

#include <QCoroTask>
#include <QObject>
#include <QPointer>
#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace zuvo {

/// Bytes of the longest answer that any request takes.
inline constexpr qint64 httpAnswerLimit = 64LL * 1024 * 1024;

/// One request to a service.
struct HttpRequest {
    std::string url; ///< absolute, judged by whoever made it
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body; ///< any bytes; may be empty

    /// The request fails once nothing has come or gone for that long. The head of the answer counts as one piece.
    std::chrono::milliseconds timeout{0};

    std::string method = "POST";

    /// A longer answer, in bytes, is a failure of the request.
    qint64 answerLimit = httpAnswerLimit;
};

/// Either an HTTP answer of any status, or a failure in words.
struct HttpAnswer {
    int status = 0;      ///< 0 if there is no answer
    std::string body;    ///< any bytes
    std::string failure; ///< why there is no answer; never empty if there is none

    [[nodiscard]] bool hasFailed() const { return !failure.empty(); }
    [[nodiscard]] bool isSuccess() const { return !hasFailed() && status >= 200 && status <= 299; }
};

/// Sends each request exactly once: nothing is repeated when a connection closes, and a redirect is an answer like any
/// other, so that no key travels further than it was sent. No cookies are kept.
class HttpClient : public QObject {
    Q_OBJECT
public:
    /// Never fails as a coroutine: a failure is an answer.
    virtual QCoro::Task<HttpAnswer> send(HttpRequest request) = 0;
};

class HttpExchange;

/// HTTP/1.1 over the platform's sockets. Each request has a connection of its own: one that was kept may be closed by
/// the service in the very moment in which the next request goes out, which then fails without having arrived. A
/// service may answer before the request has come in whole, and break off the connection: that is an answer like any
/// other. Proxies are those of `proxyFor`.
class NetworkHttpClient final : public HttpClient {
    Q_OBJECT
public:
    /// An answer of more than `answerLimit` bytes, or than the request's own limit, is a failure.
    explicit NetworkHttpClient(qint64 answerLimit = httpAnswerLimit) : m_answerLimit(answerLimit) {}

    /// Requests that still wait end with a failure.
    ~NetworkHttpClient() override;

    QCoro::Task<HttpAnswer> send(HttpRequest request) override;

private:
    qint64 m_answerLimit;
    std::vector<QPointer<HttpExchange>> m_waiting;
};

} // namespace zuvo
