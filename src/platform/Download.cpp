#include "platform/Download.h"

#include "platform/NetworkReplies.h"
#include "platform/Proxies.h"

#include <QCoroFuture>
#include <QHostAddress>
#include <QNetworkAccessManager>
#include <QNetworkRequest>
#include <QPromise>
#include <QSaveFile>
#include <QString>
#include <QUrl>
#include <algorithm>
#include <array>

namespace zuvo {

namespace {

QNetworkRequest requestFor(const QUrl& url, const DownloadLimits& limits) {
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    request.setTransferTimeout(static_cast<int>(limits.silence.count()));
    // Setting it also switches off the network access's own decoding, which takes a truncated gzip stream for an empty
    // answer.
    request.setRawHeader("Accept-Encoding", "identity");
    return request;
}

/// Where the answer sends us on to; empty if it is an answer by itself.
QUrl redirectOf(const QNetworkReply& reply) {
    constexpr std::array redirects = {301, 302, 303, 307, 308};
    const auto status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (std::find(redirects.begin(), redirects.end(), status) == redirects.end())
        return {};
    const auto target = reply.attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
    return target.isEmpty() ? QUrl() : reply.url().resolved(target);
}

/// One request of a download on its way into the file.
struct Transfer {
    QSaveFile& file;
    std::int64_t limit;
    std::int64_t written = 0;
    std::string failure = {};
};

/// Puts what has come into the file, or gives the reply up.
void take(Transfer& transfer, QNetworkReply& reply) {
    if (!transfer.failure.empty() || !redirectOf(reply).isEmpty())
        return;
    const auto bytes = reply.readAll();
    transfer.written += bytes.size();
    if (transfer.written > transfer.limit)
        transfer.failure = "The download is too large";
    else if (transfer.file.write(bytes) != bytes.size())
        transfer.failure = transfer.file.errorString().toStdString();
    if (!transfer.failure.empty())
        reply.abort();
}

/// Why a finished answer is not the whole file; empty if it is. The network access takes a connection that closes in
/// the middle of an answer for the answer's end if both come together, in chunks as well; so only a length that the
/// server stated, or the frames of HTTP/2, show that all has come.
std::string bodyFailure(const QNetworkReply& reply, std::int64_t received) {
    const auto encoding = reply.rawHeader("Content-Encoding").trimmed().toLower();
    if (!encoding.isEmpty() && encoding != "identity")
        return "The download came encoded, which was not asked for";
    const auto length = reply.header(QNetworkRequest::ContentLengthHeader);
    if (!length.isValid() && !reply.attribute(QNetworkRequest::Http2WasUsedAttribute).toBool())
        return "The server does not say how long the download is";
    return length.isValid() && length.toLongLong() != received ? "The download ended early" : "";
}

/// Awaits the reply's end; it has failed if `failure` of the transfer says so.
QCoro::Task<> receive(QNetworkReply* reply, Transfer* transfer) {
    QPromise<void> ended;
    ended.start();
    QObject::connect(reply, &QNetworkReply::readyRead, reply, [reply, transfer] {
        if (!redirectOf(*reply).isEmpty())
            reply->abort(); // the text of a redirect is for people, and may have no end
        else
            take(*transfer, *reply);
    });
    QObject::connect(reply, &QNetworkReply::finished, reply, [&ended] { ended.finish(); });
    co_await ended.future();
    if (!redirectOf(*reply).isEmpty() || !transfer->failure.empty())
        co_return;
    if (!isWholeAnswer(*reply)) {
        transfer->failure = replyFailure(*reply);
        co_return;
    }
    take(*transfer, *reply);
    if (transfer->failure.empty())
        transfer->failure = bodyFailure(*reply, transfer->written);
}

QCoro::Task<DownloadOutcome> fetchFile(std::string address, std::string path, DownloadLimits limits) {
    QSaveFile file(QString::fromStdString(path));
    DownloadOutcome outcome;
    if (!file.open(QIODevice::WriteOnly)) {
        outcome.failure = file.errorString().toStdString();
        co_return outcome;
    }
    QNetworkAccessManager manager; // owns the replies
    QUrl url(QString::fromStdString(address), QUrl::StrictMode);
    for (int hop = 0; hop <= limits.redirects; ++hop) {
        if (!isDownloadAddress(url.toString(QUrl::FullyEncoded).toStdString())) {
            outcome.failure = "The download is not offered at a secure address";
            co_return outcome;
        }
        Transfer transfer{file, limits.bytes};
        manager.setProxy(proxyFor(url));
        auto* reply = manager.get(requestFor(url, limits));
        co_await receive(reply, &transfer);
        outcome.failure = transfer.failure;
        const auto redirect = redirectOf(*reply);
        if (!outcome.hasFailed() && redirect.isEmpty() && !file.commit())
            outcome.failure = file.errorString().toStdString();
        if (outcome.hasFailed() || redirect.isEmpty())
            co_return outcome;
        url = redirect;
    }
    outcome.failure = "The download was sent on too often";
    co_return outcome;
}

/// An IPv4 address must stand in the address as it is read: "127.1" is this machine too, but nobody sees it.
bool isThisMachine(const QString& host, const std::string& url) {
    if (host == QLatin1String("localhost"))
        return true;
    const QHostAddress address(host);
    return address.isLoopback() && (address.protocol() == QAbstractSocket::IPv6Protocol ||
                                    url.find("//" + host.toStdString()) != std::string::npos);
}

} // namespace

bool isDownloadAddress(const std::string& url) {
    const QUrl parsed(QString::fromStdString(url), QUrl::StrictMode);
    if (!parsed.isValid() || parsed.host().isEmpty())
        return false;
    if (parsed.scheme() == QLatin1String("https"))
        return true;
    return parsed.scheme() == QLatin1String("http") && isThisMachine(parsed.host(), url);
}

QCoro::Task<DownloadOutcome> NetworkDownloader::fetch(std::string url, std::string path) {
    return fetchFile(std::move(url), std::move(path), m_limits);
}

} // namespace zuvo
