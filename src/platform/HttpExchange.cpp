#include "platform/HttpExchange.h"

#include "platform/Proxies.h"
#include "platform/ServiceAddresses.h"
#include "platform/Unpacking.h"

#include <QSslConfiguration>
#include <QSslSocket>
#include <QTcpSocket>
#include <algorithm>
#include <array>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace zuvo {

namespace {

/// Bytes that the socket is given in advance: more of them would only hide how far the upload is.
constexpr qint64 sendingBuffer = 64LL * 1024;

constexpr int httpPort = 80;
constexpr int httpsPort = 443;

bool isSecure(const QUrl& url) {
    return url.scheme() == QLatin1String("https");
}

/// Host and port as they are written in a request; the port only if the address has one.
std::string hostHeader(const QUrl& url) {
    const auto host = url.host(QUrl::FullyEncoded).toStdString();
    const auto written = host.find(':') == std::string::npos ? host : "[" + host + "]";
    return url.port() < 0 ? written : written + ":" + std::to_string(url.port());
}

std::string requestHead(const HttpRequest& request, const QUrl& url) {
    const auto path = url.path(QUrl::FullyEncoded).toStdString();
    auto head = request.method + " " + (path.empty() ? "/" : path);
    if (url.hasQuery())
        head += "?" + url.query(QUrl::FullyEncoded).toStdString();
    head += " HTTP/1.1\r\nHost: " + hostHeader(url) + "\r\n";
    bool namesProgram = false;
    for (const auto& [name, value] : request.headers) {
        head += name + ": " + value + "\r\n";
        namesProgram = namesProgram || name == "User-Agent";
    }
    if (!namesProgram)
        head += "User-Agent: Mozilla/5.0\r\n"; // says nothing; some gateways refuse a request without any
    return head +
           "Accept-Encoding: identity\r\nConnection: close\r\nContent-Length: " + std::to_string(request.body.size()) +
           "\r\n\r\n";
}

} // namespace

HttpExchange::HttpExchange(HttpRequest request, qint64 answerLimit)
    : m_request(std::move(request)),
      m_answerLimit(answerLimit),
      m_url(QString::fromStdString(m_request.url), QUrl::StrictMode),
      m_reader(answerLimit) {
    m_silence.setSingleShot(true);
    connect(&m_silence, &QTimer::timeout, this, [this] { giveUp(unreached("The request timed out")); });
    m_ended.start();
}

HttpExchange::~HttpExchange() {
    giveUp("The program ended the request");
}

void HttpExchange::start() {
    const bool isHttp = isSecure(m_url) || m_url.scheme() == QLatin1String("http");
    if (!m_url.isValid() || !isHttp || m_url.host().isEmpty()) {
        giveUp("The address of the request is not a web address");
        return;
    }
    if (m_request.timeout.count() > 0)
        m_silence.start(m_request.timeout);
    connectSocket();
}

void HttpExchange::connectSocket() {
    auto* secure = isSecure(m_url) ? new QSslSocket(this) : nullptr;
    m_socket = secure != nullptr ? secure : new QTcpSocket(this);
    m_socket->setProxy(proxyFor(m_url));
    connect(m_socket, &QAbstractSocket::readyRead, this, &HttpExchange::receive);
    connect(m_socket, &QAbstractSocket::errorOccurred, this, &HttpExchange::onError);
    connect(m_socket, &QAbstractSocket::disconnected, this,
            [this] { onError(QAbstractSocket::RemoteHostClosedError); });
    connect(m_socket, &QAbstractSocket::bytesWritten, this, &HttpExchange::sendMore);
    const auto host = m_url.host();
    if (secure == nullptr) {
        connect(m_socket, &QAbstractSocket::connected, this, &HttpExchange::beginSending);
        m_socket->connectToHost(host, static_cast<quint16>(m_url.port(httpPort)));
        return;
    }
    connect(secure, &QSslSocket::encryptedBytesWritten, this, &HttpExchange::sendMore);
    connect(secure, &QSslSocket::encrypted, this, &HttpExchange::beginSending);
    secure->connectToHostEncrypted(host, static_cast<quint16>(m_url.port(httpsPort)));
}

void HttpExchange::beginSending() {
    m_isConnected = true;
    // A failed write makes the socket close its descriptor, and with it goes what the service said before.
    if (!isSecure(m_url))
        m_spareDescriptor = ::fcntl(static_cast<int>(m_socket->socketDescriptor()), F_DUPFD_CLOEXEC, 0);
    const auto head = requestHead(m_request, m_url);
    m_socket->write(head.data(), static_cast<qint64>(head.size()));
    sendMore();
}

qint64 HttpExchange::unsentBytes() const {
    const auto* secure = qobject_cast<const QSslSocket*>(m_socket);
    return m_socket->bytesToWrite() + (secure != nullptr ? secure->encryptedBytesToWrite() : 0);
}

void HttpExchange::sendMore() {
    if (!m_isConnected || m_hasEnded)
        return;
    if (m_silence.isActive())
        m_silence.start();
    const auto size = static_cast<qint64>(m_request.body.size());
    const auto count = std::min(sendingBuffer - unsentBytes(), size - m_sentOfBody);
    if (count > 0 && m_socket->write(m_request.body.data() + m_sentOfBody, count) == count)
        m_sentOfBody += count;
}

void HttpExchange::receive() {
    if (m_hasEnded)
        return;
    const auto bytes = m_socket->readAll();
    m_reader.take({bytes.constData(), static_cast<std::size_t>(bytes.size())});
    // A head that comes in drips is no sign of life.
    if (m_reader.hasHead() && m_silence.isActive())
        m_silence.start();
    endIfAnswered();
}

void HttpExchange::onError(QAbstractSocket::SocketError error) {
    receive();
    if (m_hasEnded)
        return;
    readWhatIsLeft();
    if (error == QAbstractSocket::RemoteHostClosedError && m_isConnected)
        m_reader.close();
    endIfAnswered();
    giveUp(wordsFor(error));
}

/// Reads what has reached this machine although the connection has been broken off.
void HttpExchange::readWhatIsLeft() {
    std::array<char, 64UL * 1024> piece{};
    while (m_spareDescriptor >= 0 && !m_reader.hasEnded()) {
        const auto count = ::recv(m_spareDescriptor, piece.data(), piece.size(), MSG_DONTWAIT);
        if (count <= 0)
            return;
        m_reader.take({piece.data(), static_cast<std::size_t>(count)});
    }
}

void HttpExchange::endIfAnswered() {
    if (m_hasEnded || !m_reader.hasEnded())
        return;
    HttpAnswer answer;
    answer.failure = m_reader.failure();
    if (m_reader.isWhole()) {
        auto unpacked = unpackedBody(m_reader.takeBody(), m_reader.contentEncoding(), m_answerLimit);
        answer.failure = std::move(unpacked.failure);
        if (!answer.hasFailed()) {
            answer.status = m_reader.status();
            answer.body = std::move(unpacked.body);
        }
    }
    end(std::move(answer));
}

void HttpExchange::giveUp(std::string failure) {
    if (m_hasEnded)
        return;
    HttpAnswer answer;
    answer.failure = std::move(failure);
    end(std::move(answer));
}

void HttpExchange::end(HttpAnswer answer) {
    m_hasEnded = true;
    m_answer = std::move(answer);
    m_silence.stop();
    if (m_spareDescriptor >= 0)
        ::close(std::exchange(m_spareDescriptor, -1));
    if (m_socket != nullptr) {
        m_socket->disconnect(this);
        m_socket->abort();
    }
    m_ended.finish();
}

std::string HttpExchange::wordsFor(QAbstractSocket::SocketError error) const {
    switch (error) {
    case QAbstractSocket::RemoteHostClosedError:
        return "Connection closed";
    case QAbstractSocket::SocketTimeoutError:
        return unreached("The request timed out");
    case QAbstractSocket::HostNotFoundError:
        return "Host " + m_url.host().toStdString() + " not found";
    case QAbstractSocket::ProxyAuthenticationRequiredError:
    case QAbstractSocket::ProxyConnectionRefusedError:
    case QAbstractSocket::ProxyConnectionClosedError:
    case QAbstractSocket::ProxyConnectionTimeoutError:
    case QAbstractSocket::ProxyNotFoundError:
    case QAbstractSocket::ProxyProtocolError:
        return m_socket->errorString().toStdString() + ": " + m_socket->proxy().hostName().toStdString() + ":" +
               std::to_string(m_socket->proxy().port());
    default:
        break;
    }
    const auto words = m_socket->errorString().toStdString();
    return unreached(words.empty() ? "Network error " + std::to_string(error) : words);
}

/// For a service of the user's own that no connection reached, its address too: it may be mistyped.
std::string HttpExchange::unreached(std::string words) const {
    if (m_isConnected || !isNearAddress(m_request.url))
        return words;
    return words + ": " + m_url.scheme().toStdString() + "://" + hostHeader(m_url);
}

} // namespace zuvo
