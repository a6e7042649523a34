#pragma once

#include "standin/Exchange.h"
#include "standin/Failure.h"

#include <QAbstractHttpServer>
#include <QTcpServer>

namespace zuvo::standin {

class StandIn;

/// A listening socket that counts who comes in.
class CountingTcpServer : public QTcpServer {
    Q_OBJECT

public:
    using QTcpServer::QTcpServer;
    [[nodiscard]] int connectionCount() const { return m_connectionCount; }

protected:
    void incomingConnection(qintptr handle) override;

private:
    int m_connectionCount = 0;
};

/// The HTTP side: turns what arrives into a RecordedRequest, asks the StandIn, and sends, delays, cuts or drops.
class HttpFront : public QAbstractHttpServer {
    Q_OBJECT

public:
    explicit HttpFront(StandIn& owner);

    [[nodiscard]] bool listenOnLoopback(quint16 port);
    [[nodiscard]] quint16 port() const { return m_tcp->serverPort(); }
    [[nodiscard]] int connectionCount() const { return m_tcp->connectionCount(); }

protected:
    bool handleRequest(const QHttpServerRequest& request, QTcpSocket* socket) override;
    void missingHandler(const QHttpServerRequest& request, QTcpSocket* socket) override;

private:
    StandIn& m_owner;
    CountingTcpServer* m_tcp; ///< owned by this object as its parent
};

} // namespace zuvo::standin
