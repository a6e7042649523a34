#include "standin/HttpFront.h"

#include "standin/AccountService.h"
#include "standin/MessagesService.h"
#include "standin/StandIn.h"
#include "standin/TranscriptionService.h"

#include <QHttpServerRequest>
#include <QMetaEnum>
#include <QTcpSocket>
#include <QTimer>
#include <QUrl>

namespace zuvo::standin {
namespace {

constexpr const char* connectionNumber = "zuvoConnectionNumber"; // the property that numbers a socket

std::string methodName(QHttpServerRequest::Method method) {
    const char* name = QMetaEnum::fromType<QHttpServerRequest::Method>().valueToKey(static_cast<int>(method));
    return QByteArray(name).toUpper().toStdString();
}

Service serviceOf(const QUrl& url) {
    const std::string path = url.path().toStdString();
    if (path == transcriptionPath)
        return Service::transcription;
    return path == messagesPath ? Service::messages : accountServiceOf(path);
}

RecordedRequest record(const QHttpServerRequest& request, int connection) {
    RecordedRequest recorded;
    recorded.service = serviceOf(request.url());
    recorded.method = methodName(request.method());
    recorded.path = request.url().toEncoded(QUrl::RemoveScheme | QUrl::RemoveAuthority).toStdString();
    for (const auto& [name, value] : request.headers())
        recorded.headers.emplace_back(name.toStdString(), value.toStdString());
    recorded.body = request.body().toStdString();
    recorded.connection = connection;
    return recorded;
}

const char* reason(int status) {
    switch (status) {
    case 200:
        return "OK";
    case 302:
        return "Found";
    case 400:
        return "Bad Request";
    case 401:
        return "Unauthorized";
    case 404:
        return "Not Found";
    case 405:
        return "Method Not Allowed";
    case 429:
        return "Too Many Requests";
    case 500:
        return "Internal Server Error";
    default:
        return "Status";
    }
}

QByteArray headOf(const Answer& answer) {
    QByteArray head = "HTTP/1.1 " + QByteArray::number(answer.status) + ' ' + reason(answer.status) + "\r\n";
    for (const auto& [name, value] : answer.headers)
        head += QByteArray::fromStdString(name) + ": " + QByteArray::fromStdString(value) + "\r\n";
    return head + "Content-Length: " + QByteArray::number(answer.body.size()) + "\r\n\r\n";
}

void send(QTcpSocket* socket, FailureKind kind, const Answer& answer) {
    switch (kind) {
    case FailureKind::stall:
        return;
    case FailureKind::drop:
        socket->disconnectFromHost();
        return;
    case FailureKind::cut:
        socket->write(headOf(answer));
        socket->write(answer.body.data(), static_cast<qint64>(answer.body.size() / 2));
        socket->disconnectFromHost(); // what was written goes out first
        return;
    default:
        socket->write(headOf(answer));
        socket->write(answer.body.data(), static_cast<qint64>(answer.body.size()));
    }
}

} // namespace

void CountingTcpServer::incomingConnection(qintptr handle) {
    auto* socket = new QTcpSocket(this);
    socket->setSocketDescriptor(handle);
    socket->setProperty(connectionNumber, ++m_connectionCount);
    addPendingConnection(socket);
}

HttpFront::HttpFront(StandIn& owner) : m_owner(owner), m_tcp(new CountingTcpServer(this)) {}

bool HttpFront::listenOnLoopback(quint16 port) {
    if (!m_tcp->listen(QHostAddress::LocalHost, port))
        return false;
    bind(m_tcp);
    return true;
}

bool HttpFront::handleRequest(const QHttpServerRequest& request, QTcpSocket* socket) {
    m_owner.m_requests.push_back(record(request, socket->property(connectionNumber).toInt()));
    const RecordedRequest recorded = m_owner.m_requests.back();
    Q_EMIT m_owner.requestArrived();
    const Failure failure = m_owner.takeFailure(recorded.service);
    // The socket is the timer's context: if the client gives up first, nothing is sent. Even without a delay the answer
    // goes out from the event loop, as the server must not see its socket closed underneath it.
    QTimer::singleShot(
        failure.delay, Qt::PreciseTimer, socket,
        [socket, kind = failure.kind, answer = m_owner.answer(recorded, failure)] { send(socket, kind, answer); });
    return true;
}

void HttpFront::missingHandler(const QHttpServerRequest& request, QTcpSocket* socket) {
    Q_UNUSED(request) // handleRequest takes every request
    socket->disconnectFromHost();
}

} // namespace zuvo::standin
