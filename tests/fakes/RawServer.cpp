#include "fakes/RawServer.h"

#include <QHostAddress>
#include <QTimer>
#include <algorithm>
#include <cctype>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <sys/socket.h>

namespace zuvo::tests {

namespace {

constexpr std::string_view lineEnd = "\r\n";
constexpr std::string_view headEnd = "\r\n\r\n";

std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

void write(QTcpSocket& socket, const std::string& bytes) {
    socket.write(bytes.data(), static_cast<qint64>(bytes.size()));
}

std::size_t contentLength(const RawRequest& request) {
    const auto values = request.header("content-length");
    return values.empty() ? 0 : std::stoul(values.front());
}

} // namespace

std::string RawRequest::requestLine() const {
    return head.substr(0, head.find(lineEnd));
}

std::vector<std::string> RawRequest::header(const std::string& name) const {
    std::vector<std::string> values;
    auto start = head.find(lineEnd);
    while (start != std::string::npos && start + lineEnd.size() < head.size()) {
        start += lineEnd.size();
        const auto end = head.find(lineEnd, start);
        const auto line = head.substr(start, end - start);
        const auto colon = line.find(':');
        if (colon != std::string::npos && lowerCase(line.substr(0, colon)) == lowerCase(name)) {
            const auto value = line.find_first_not_of(' ', colon + 1);
            values.push_back(value == std::string::npos ? "" : line.substr(value));
        }
        start = end;
    }
    return values;
}

std::string httpAnswer(int status, const std::string& body, const std::vector<std::string>& headers) {
    auto text = "HTTP/1.1 " + std::to_string(status) + " Planned\r\n";
    for (const auto& header : headers)
        text += header + "\r\n";
    return text + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

Behaviour answer(std::string bytes) {
    return [bytes](QTcpSocket& socket) { write(socket, bytes); };
}

Behaviour answerAndClose(std::string bytes) {
    return [bytes](QTcpSocket& socket) {
        write(socket, bytes);
        socket.disconnectFromHost();
    };
}

Behaviour answerAndReset(std::string bytes) {
    return [bytes](QTcpSocket& socket) {
        write(socket, bytes);
        socket.flush();
        // Closed with linger 0, a connection ends in a reset and not in order.
        const linger atOnce{1, 0};
        ::setsockopt(static_cast<int>(socket.socketDescriptor()), SOL_SOCKET, SO_LINGER, &atOnce, sizeof(atOnce));
        socket.abort();
    };
}

Behaviour answerAfter(std::chrono::milliseconds pause, std::string bytes) {
    return [pause, bytes](QTcpSocket& socket) {
        QTimer::singleShot(pause, &socket, [&socket, bytes] { write(socket, bytes); });
    };
}

Behaviour closeUnanswered() {
    return [](QTcpSocket& socket) { socket.disconnectFromHost(); };
}

Behaviour resetUnanswered() {
    return [](QTcpSocket& socket) { socket.abort(); };
}

Behaviour stall() {
    return [](QTcpSocket& /*socket*/) {};
}

Behaviour trickle(std::string bytes, std::size_t bytesAtATime, std::chrono::milliseconds pause) {
    return [bytes, bytesAtATime, pause](QTcpSocket& socket) {
        auto* timer = new QTimer(&socket);
        const auto position = std::make_shared<std::size_t>(0);
        QObject::connect(timer, &QTimer::timeout, &socket, [&socket, timer, position, bytes, bytesAtATime] {
            write(socket, bytes.substr(*position, bytesAtATime));
            *position += bytesAtATime;
            if (*position >= bytes.size())
                timer->stop();
        });
        timer->start(pause);
    };
}

Behaviour answerEndlessly(std::string start) {
    return [start](QTcpSocket& socket) {
        constexpr std::size_t pieceBytes = 64UL * 1024;
        const auto more = [&socket] {
            if (socket.bytesToWrite() < static_cast<qint64>(pieceBytes))
                write(socket, std::string(pieceBytes, 'x'));
        };
        QObject::connect(&socket, &QTcpSocket::bytesWritten, &socket, more);
        write(socket, start);
    };
}

RawServer::RawServer() {
    QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] { accept(); });
    if (!m_server.listen(QHostAddress::LocalHost))
        throw std::runtime_error("No port could be listened on");
}

RawServer::~RawServer() {
    for (const auto& [number, socket] : m_connections) {
        if (!socket.isNull())
            QObject::disconnect(socket.data(), nullptr, &m_server, nullptr);
    }
}

void RawServer::then(Behaviour behaviour) {
    m_plan.push_back(std::move(behaviour));
}

void RawServer::thenAlways(Behaviour behaviour) {
    m_always = std::move(behaviour);
}

std::string RawServer::url(const std::string& path) const {
    return "http://127.0.0.1:" + std::to_string(port()) + path;
}

int RawServer::openConnectionCount() const {
    return static_cast<int>(std::count_if(m_connections.begin(), m_connections.end(), [](const auto& connection) {
        return !connection.second.isNull() && connection.second->state() == QAbstractSocket::ConnectedState;
    }));
}

void RawServer::readSlowly(qint64 bytesAtATime, std::chrono::milliseconds pause) {
    m_bytesAtATime = bytesAtATime;
    m_readPause = pause;
}

void RawServer::closeConnections() {
    for (const auto& [number, socket] : m_connections) {
        if (!socket.isNull())
            socket->disconnectFromHost();
    }
}

void RawServer::accept() {
    while (auto* socket = m_server.nextPendingConnection()) {
        const auto connection = ++m_connectionCount;
        m_connections[connection] = socket;
        QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        if (m_bytesAtATime == 0) {
            QObject::connect(socket, &QTcpSocket::readyRead, &m_server,
                             [this, socket, connection] { read(socket, connection); });
            continue;
        }
        socket->setReadBufferSize(m_bytesAtATime);
        socket->setSocketOption(QAbstractSocket::ReceiveBufferSizeSocketOption, static_cast<int>(m_bytesAtATime));
        auto* timer = new QTimer(socket);
        QObject::connect(timer, &QTimer::timeout, &m_server, [this, socket, connection] { read(socket, connection); });
        timer->start(m_readPause);
    }
}

void RawServer::read(QTcpSocket* socket, int connection) {
    const auto bytes = m_bytesAtATime == 0 ? socket->readAll() : socket->read(m_bytesAtATime);
    m_receivedBytes += static_cast<std::size_t>(bytes.size());
    take(socket, connection, bytes.toStdString());
}

void RawServer::take(QTcpSocket* socket, int connection, const std::string& bytes) {
    auto& pending = m_pending[connection];
    pending += bytes;
    for (auto end = pending.find(headEnd); end != std::string::npos; end = pending.find(headEnd)) {
        RawRequest request;
        request.connection = connection;
        request.head = pending.substr(0, end + headEnd.size());
        // A body that is dropped may hold what looks like a head.
        if (m_actsBeforeBody && !m_requests.empty() && m_requests.back().connection == connection)
            return pending.clear();
        const auto length = m_actsBeforeBody ? 0 : contentLength(request);
        if (pending.size() < request.head.size() + length)
            return;
        request.body = pending.substr(request.head.size(), length);
        pending.erase(0, request.head.size() + length);
        m_requests.push_back(std::move(request));

        auto behaviour = m_always ? m_always : closeUnanswered();
        if (!m_plan.empty()) {
            behaviour = std::move(m_plan.front());
            m_plan.pop_front();
        }
        behaviour(*socket);
    }
}

} // namespace zuvo::tests
