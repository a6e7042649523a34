#pragma once

#include "platform/Environment.h"

#include <QLocalServer>
#include <QLockFile>
#include <QObject>
#include <QString>
#include <chrono>
#include <optional>
#include <string>

class QLocalSocket;

namespace zuvo {

/// One running program for each user and home folder. The first start listens on a local socket that this user alone
/// may open; a later one hands its URL over there and ends.
///
///     message   "ZUVO" length kind [url]     length: of what follows it, 4 bytes, the highest first
///     kind      "U" url (UTF-8) | "R"        a URL to open | show the window
///     answer    "+"                          once the message is taken
///
/// Bytes of any other form end their connection and nothing else. A URL may hold a token and is written nowhere.
class SingleInstance : public QObject {
    Q_OBJECT

public:
    enum class Start {
        first,       ///< nobody else runs: this program listens from now on, and opens its own URL itself
        handedOver,  ///< the first has taken the message: this program has nothing left to do
        noAnswer,    ///< there is a first, but it did not take the message in time; it may still do so later
        urlTooLong,  ///< there is a first; a URL of that length is not handed over
        unavailable, ///< nothing could be found out, and nobody listens: see `refusal`
    };

    /// Bytes of the longest URL that is handed over.
    static constexpr qint64 longestUrl = 1024 * 1024;

    /// The socket and its lock lie in the environment's temporary folder; where the socket's path would be longer than
    /// the system takes, in that of `shortFolder`.
    explicit SingleInstance(const Environment& environment, const std::string& shortFolder = "/tmp",
                            QObject* parent = nullptr);

    /// Lets the next start be the first.
    ~SingleInstance() override;

    /// Finds out who is first, and hands `url` over if it is another: without a URL, the wish to see its window. Called
    /// once, before anything else runs; the event loop turns meanwhile. Returns soon after `patience` at the latest.
    [[nodiscard]] Start start(const std::optional<std::string>& url = {},
                              std::chrono::milliseconds patience = std::chrono::seconds(5));

    /// Why it is unavailable, for the user; else empty.
    [[nodiscard]] const std::string& refusal() const { return m_refusal; }

    /// Where the first listens; empty if no place could be found.
    [[nodiscard]] const std::string& socketPath() const { return m_socketPath; }

Q_SIGNALS:
    /// A later start was given this URL. It comes from outside: any program of the user's may send one.
    void urlReceived(const QString& url);
    /// A later start was given none: the window should come to the front.
    void raiseRequested();

private:
    [[nodiscard]] Start listen();
    void greet();
    void receive(QLocalSocket* socket);

    std::string m_socketPath;
    std::string m_refusal;
    std::optional<QLockFile> m_lock; ///< held by the first for as long as it lives; outlives the server's socket
    QLocalServer m_server;
};

} // namespace zuvo
