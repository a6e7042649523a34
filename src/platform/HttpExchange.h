#pragma once

#include "platform/Http.h"
#include "platform/HttpAnswerReader.h"

#include <QAbstractSocket>
#include <QFuture>
#include <QPromise>
#include <QTimer>
#include <QUrl>
#include <string>

namespace zuvo {

/// One request and its answer on a connection of its own. Nothing is ever sent twice. The answer is read while the
/// request is still being sent, so that a service that refuses early and breaks off is still understood.
///
/// Lives in the coroutine that awaits `ended`.
class HttpExchange final : public QObject {
    Q_OBJECT
public:
    HttpExchange(HttpRequest request, qint64 answerLimit);
    ~HttpExchange() override;

    /// Connects and sends; called once.
    void start();

    /// Finished once `takeAnswer` may be called, which may be immediately.
    [[nodiscard]] QFuture<void> ended() const { return m_ended.future(); }

    /// Ends it with this failure, unless it has ended.
    void giveUp(std::string failure);

    [[nodiscard]] HttpAnswer takeAnswer() { return std::move(m_answer); }

private:
    void connectSocket();
    void beginSending();
    void sendMore();
    void receive();
    void onError(QAbstractSocket::SocketError error);
    void readWhatIsLeft();
    void endIfAnswered();
    void end(HttpAnswer answer);
    [[nodiscard]] qint64 unsentBytes() const;
    [[nodiscard]] std::string wordsFor(QAbstractSocket::SocketError error) const;
    [[nodiscard]] std::string unreached(std::string words) const;

    HttpRequest m_request;
    qint64 m_answerLimit;
    QUrl m_url;
    HttpAnswerReader m_reader;
    QAbstractSocket* m_socket = nullptr; ///< owned as a child
    int m_spareDescriptor = -1;          ///< a second one for the unencrypted connection, owned; -1 if there is none
    bool m_isConnected = false;
    qint64 m_sentOfBody = 0;
    QTimer m_silence;
    QPromise<void> m_ended;
    bool m_hasEnded = false;
    HttpAnswer m_answer;
};

} // namespace zuvo
