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
    [[nodiscard]] int connectionCount() const { return connectionCount_; }

protected:
    void incomingConnection(qintptr handle) override;

private:
    int connectionCount_ = 0;
};

/// The HTTP side: turns what arrives into a RecordedRequest, asks the StandIn, and sends, delays, cuts or drops.
class HttpFront : public QAbstractHttpServer {
    Q_OBJECT

public:
    explicit HttpFront(StandIn& owner);

    [[nodiscard]] bool listenOnLoopback(quint16 port);
    [[nodiscard]] quint16 port() const { return tcp_->serverPort(); }
    [[nodiscard]] int connectionCount() const { return tcp_->connectionCount(); }

protected:
    bool handleRequest(const QHttpServerRequest& request, QTcpSocket* socket) override;
    void missingHandler(const QHttpServerRequest& request, QTcpSocket* socket) override;

private:
    StandIn& owner_;
    CountingTcpServer* tcp_; ///< owned by this object as its parent
};

} // namespace zuvo::standin
