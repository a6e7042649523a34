#include "platform/Http.h"

#include "platform/NetworkReplies.h"

#include <QCoroFuture>
#include <QIODevice>
#include <QNetworkAccessManager>
#include <QNetworkRequest>
#include <QPointer>
#include <QPromise>
#include <QUrl>
#include <algorithm>
#include <cstring>

namespace zuvo {

namespace {

/// A body that can be read once and never wound back. The network access repeats a POST by itself when its connection
/// closes unanswered, but only if it can read the body again.
class OneWayBody final : public QIODevice {
public:
    explicit OneWayBody(std::string body) : m_body(std::move(body)) { open(QIODevice::ReadOnly); }

    [[nodiscard]] bool isSequential() const override { return true; }
    [[nodiscard]] qint64 bytesAvailable() const override { return left() + QIODevice::bytesAvailable(); }
    bool reset() override { return false; }

protected:
    qint64 readData(char* data, qint64 most) override {
        if (left() == 0)
            return -1;
        const auto count = std::min(most, left());
        std::memcpy(data, m_body.data() + m_position, static_cast<std::size_t>(count));
        m_position += count;
        return count;
    }

    qint64 writeData(const char* /*data*/, qint64 /*count*/) override { return -1; }

private:
    [[nodiscard]] qint64 left() const { return static_cast<qint64>(m_body.size()) - m_position; }

    std::string m_body;
    qint64 m_position = 0;
};

bool holdsControlCharacter(const std::string& text) {
    return std::any_of(text.begin(), text.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 0x20 || byte == 0x7F;
    });
}

/// A line end in a header value (a key from a file, say) would start a header of its own.
std::string refusalOf(const HttpRequest& request) {
    for (const auto& [name, value] : request.headers) {
        if (holdsControlCharacter(value))
            return "The value of the header " + name + " holds a line end or another control character";
    }
    return {};
}

QNetworkRequest networkRequest(const HttpRequest& request) {
    QNetworkRequest prepared{QUrl(QString::fromStdString(request.url), QUrl::StrictMode)};
    for (const auto& [name, value] : request.headers)
        prepared.setRawHeader(QByteArray::fromStdString(name), QByteArray::fromStdString(value));
    prepared.setRawHeader("Connection", "close");
    prepared.setHeader(QNetworkRequest::ContentLengthHeader, static_cast<qint64>(request.body.size()));
    prepared.setAttribute(QNetworkRequest::DoNotBufferUploadDataAttribute, true);
    prepared.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    prepared.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    prepared.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    prepared.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    // One request on one connection, so that a connection that ends takes exactly one request with it.
    prepared.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    prepared.setAttribute(QNetworkRequest::HttpPipeliningAllowedAttribute, false);
    prepared.setTransferTimeout(static_cast<int>(request.timeout.count()));
    return prepared;
}

/// Whether the body of an error ends before its announced length: of a refused key the network access does not always
/// say that the connection closed in the middle.
bool isCutError(const QNetworkReply& reply, qint64 bodySize) {
    constexpr int firstError = 400;
    const auto announced = reply.header(QNetworkRequest::ContentLengthHeader); // none for what came packed
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() >= firstError && announced.isValid() &&
           bodySize < announced.toLongLong();
}

/// Starts the request. The manager owns the reply, and the reply its body.
QNetworkReply* start(QNetworkAccessManager& manager, HttpRequest request) {
    const auto prepared = networkRequest(request);
    auto* body = new OneWayBody(std::move(request.body));
    // As a custom request a GET has a body too, if an empty one: without one it would be repeated.
    auto* reply = request.method == "POST"
                      ? manager.post(prepared, body)
                      : manager.sendCustomRequest(prepared, QByteArray::fromStdString(request.method), body);
    body->setParent(reply);
    return reply;
}

/// Gives up an answer that grows beyond the limit while it comes in, and says so in `tooLong`, which outlives the
/// reply.
void breakOffBeyond(qint64 limit, QNetworkReply* reply, bool& tooLong) {
    const auto look = [limit, reply, &tooLong](qint64 bytes, qint64 /*total*/) {
        if (bytes > limit && !tooLong) {
            tooLong = true;
            reply->abort();
        }
    };
    QObject::connect(reply, &QNetworkReply::downloadProgress, reply, look);
}

} // namespace

NetworkHttpClient::~NetworkHttpClient() {
    for (const auto& reply : m_waiting) {
        if (!reply.isNull())
            reply->abort();
    }
}

QCoro::Task<HttpAnswer> NetworkHttpClient::send(HttpRequest request) {
    HttpAnswer answer;
    answer.failure = refusalOf(request);
    if (answer.hasFailed())
        co_return answer;

    // The client may be gone when the answer comes: what is needed then lives in this frame.
    const QPointer<NetworkHttpClient> client(this);
    const auto limit = m_answerLimit;
    bool tooLong = false;
    QNetworkAccessManager manager; // owns the reply
    auto* reply = start(manager, std::move(request));
    std::erase_if(m_waiting, [](const QPointer<QNetworkReply>& known) { return known.isNull(); });
    m_waiting.emplace_back(reply);
    breakOffBeyond(limit, reply, tooLong);
    QPromise<void> ended;
    ended.start();
    QObject::connect(reply, &QNetworkReply::finished, reply, [&ended] { ended.finish(); });
    co_await ended.future();

    constexpr auto tooLongWords = "The answer is too long";
    if (client.isNull())
        answer.failure = "The program ended the request";
    else if (tooLong)
        answer.failure = tooLongWords;
    else if (!isWholeAnswer(*reply))
        answer.failure = replyFailure(*reply);
    if (answer.hasFailed())
        co_return answer;

    const auto bytes = reply->read(limit + 1); // what came packed grows only now
    if (bytes.size() > limit) {
        answer.failure = tooLongWords;
        co_return answer;
    }
    if (isCutError(*reply, bytes.size())) {
        answer.failure = "Connection closed";
        co_return answer;
    }
    answer.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    answer.body = bytes.toStdString();
    co_return answer;
}

} // namespace zuvo
