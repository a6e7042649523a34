#pragma once

#include <QObject>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace zuvo::tests {

/// What arrived of one request, byte for byte.
struct RawRequest {
    std::string head; ///< request line and headers with the empty line behind them
    std::string body;
    int connection = 0; ///< connections are counted from 1

    /// "POST /path HTTP/1.1"
    [[nodiscard]] std::string requestLine() const;

    /// The values of all headers of that name (any case), in their order.
    [[nodiscard]] std::vector<std::string> header(const std::string& name) const;
};

/// What the server does once a request has come in whole.
using Behaviour = std::function<void(QTcpSocket&)>;

/// A whole HTTP answer as bytes. A Content-Length stands in it; `headers` are lines without their ends.
[[nodiscard]] std::string httpAnswer(int status, const std::string& body, const std::vector<std::string>& headers = {});

[[nodiscard]] Behaviour answer(std::string bytes);         ///< and keep the connection
[[nodiscard]] Behaviour answerAndClose(std::string bytes); ///< cuts the body if the bytes end within it
[[nodiscard]] Behaviour answerAfter(std::chrono::milliseconds pause, std::string bytes);
[[nodiscard]] Behaviour answerAndReset(std::string bytes); ///< and break the connection off, whatever still comes
[[nodiscard]] Behaviour closeUnanswered();
[[nodiscard]] Behaviour resetUnanswered(); ///< the connection is broken off, not closed in order
[[nodiscard]] Behaviour stall();           ///< no answer ever
[[nodiscard]] Behaviour trickle(std::string bytes, std::size_t bytesAtATime, std::chrono::milliseconds pause);
[[nodiscard]] Behaviour answerEndlessly(std::string start); ///< the start, then "x" for as long as the client takes it

/// A server on loopback that knows no HTTP but where a request ends. It does to each request what the test told it, in
/// that order, and keeps what arrived. A request that nobody planned is kept too, and its connection closed.
class RawServer {
public:
    RawServer();
    ~RawServer();
    RawServer(const RawServer&) = delete;
    RawServer& operator=(const RawServer&) = delete;

    /// Plans the next request that has no plan yet.
    void then(Behaviour behaviour);

    /// Plans all requests behind the planned ones.
    void thenAlways(Behaviour behaviour);

    /// "http://127.0.0.1:{port}" and the path.
    [[nodiscard]] std::string url(const std::string& path = {}) const;

    [[nodiscard]] quint16 port() const { return m_server.serverPort(); }

    /// The requests that came in whole, in their order.
    [[nodiscard]] const std::vector<RawRequest>& requests() const { return m_requests; }

    [[nodiscard]] int connectionCount() const { return m_connectionCount; }

    /// Connections that are open now.
    [[nodiscard]] int openConnectionCount() const;

    /// Bytes that arrived, those of requests that did not come in whole included.
    [[nodiscard]] std::size_t receivedBytes() const { return m_receivedBytes; }

    /// Reads no more than that many bytes at a time, with a pause in between.
    void readSlowly(qint64 bytesAtATime, std::chrono::milliseconds pause);

    /// Acts on a request as soon as its head has come; its body is dropped.
    void actBeforeBody() { m_actsBeforeBody = true; }

    /// Closes every connection, in order.
    void closeConnections();

private:
    void accept();
    void read(QTcpSocket* socket, int connection);
    void take(QTcpSocket* socket, int connection, const std::string& bytes);

    QTcpServer m_server;
    std::map<int, QPointer<QTcpSocket>> m_connections;
    std::map<int, std::string> m_pending;
    std::deque<Behaviour> m_plan;
    Behaviour m_always;
    std::vector<RawRequest> m_requests;
    int m_connectionCount = 0;
    std::size_t m_receivedBytes = 0;
    bool m_actsBeforeBody = false;
    qint64 m_bytesAtATime = 0;
    std::chrono::milliseconds m_readPause{0};
};

} // namespace zuvo::tests
