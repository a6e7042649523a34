#include "platform/SingleInstance.h"

#include "base/Text.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QLocalSocket>
#include <QTimer>
#include <QtEndian>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace zuvo {

namespace {

constexpr std::chrono::milliseconds betweenTries{20};
constexpr std::chrono::seconds longestReception{10}; // a connection that says no more by then is dropped

constexpr qint64 magicBytes = 4;
constexpr qint64 headBytes = magicBytes + 4;
constexpr char urlKind = 'U';
constexpr char raiseKind = 'R';
constexpr char acknowledgement = '+';

QByteArray magic() {
    return QByteArrayLiteral("ZUVO");
}

QByteArray framed(const std::optional<std::string>& url) {
    const QByteArray content = url ? urlKind + QByteArray::fromStdString(*url) : QByteArray(1, raiseKind);
    QByteArray length(headBytes - magicBytes, '\0');
    qToBigEndian(static_cast<quint32>(content.size()), length.data());
    return magic() + length + content;
}

/// What a message says: a URL, or no URL for the wish to see the window. Nothing for bytes of another form.
std::optional<std::optional<QString>> readContent(const QByteArray& content) {
    if (content == QByteArray(1, raiseKind))
        return std::optional<QString>();
    const QByteArray url = content.mid(1);
    if (!content.startsWith(urlKind) || !isValidUtf8({url.constData(), static_cast<std::size_t>(url.size())}))
        return std::nullopt;
    return QString::fromUtf8(url);
}

std::string socketName(const Environment& environment) {
    return "manager-" + std::to_string(geteuid()) + "-" + environment.homeHash() + ".socket";
}

bool isShortEnough(const std::string& path) {
    return path.size() < sizeof(sockaddr_un::sun_path); // which ends with a zero byte
}

/// A socket of another user's would be given what is meant for our own program.
bool isOurs(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 && S_ISSOCK(status.st_mode) && status.st_uid == geteuid();
}

/// Runs the event loop until something has changed about the socket, or the time is over.
void waitForNews(const QLocalSocket& socket, const QDeadlineTimer& deadline) {
    QEventLoop loop;
    QObject::connect(&socket, &QLocalSocket::stateChanged, &loop, &QEventLoop::quit);
    QObject::connect(&socket, &QLocalSocket::readyRead, &loop, &QEventLoop::quit);
    QTimer::singleShot(std::chrono::milliseconds(deadline.remainingTime()), Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

void pause() {
    QEventLoop loop;
    QTimer::singleShot(betweenTries, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

enum class Delivery { taken, nobodyThere, noAnswer, tooLong };

Delivery deliver(const std::string& path, const std::optional<std::string>& url, const QDeadlineTimer& deadline) {
    if (!isOurs(path))
        return Delivery::nobodyThere;
    QLocalSocket socket;
    socket.connectToServer(QString::fromStdString(path));
    while (socket.state() == QLocalSocket::ConnectingState && !deadline.hasExpired())
        waitForNews(socket, deadline);
    if (socket.state() == QLocalSocket::ConnectingState)
        return Delivery::noAnswer;
    if (socket.state() != QLocalSocket::ConnectedState)
        return Delivery::nobodyThere;
    if (url && url->size() > static_cast<std::size_t>(SingleInstance::longestUrl))
        return Delivery::tooLong;
    socket.write(framed(url));
    while (true) {
        if (socket.bytesAvailable() > 0)
            return socket.read(1) == QByteArray(1, acknowledgement) ? Delivery::taken : Delivery::noAnswer;
        if (socket.state() != QLocalSocket::ConnectedState)
            return Delivery::nobodyThere; // it has gone away in the middle
        if (deadline.hasExpired())
            return Delivery::noAnswer;
        waitForNews(socket, deadline);
    }
}

} // namespace

SingleInstance::SingleInstance(const Environment& environment, const std::string& shortFolder, QObject* parent)
    : QObject(parent) {
    const auto name = socketName(environment);
    auto folder = environment.temporaryFolder();
    if (folder && !isShortEnough(*folder + name)) {
        auto shorter = environment;
        shorter.systemTemporaryFolder = shortFolder;
        folder = shorter.temporaryFolder();
    }
    if (!folder || !isShortEnough(*folder + name)) {
        m_refusal = "The folder for temporary files in " + environment.systemTemporaryFolder +
                    " cannot be made, is not this user's own or has too long a name";
        return;
    }
    m_socketPath = *folder + name;
    m_lock.emplace(QString::fromStdString(m_socketPath + ".lock"));
    m_lock->setStaleLockTime(0); // however old: the first may run for weeks
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &SingleInstance::greet);
}

SingleInstance::~SingleInstance() {
    m_server.close(); // while the lock still keeps others from listening
}

SingleInstance::Start SingleInstance::start(const std::optional<std::string>& url, std::chrono::milliseconds patience) {
    if (!m_lock)
        return Start::unavailable;
    const QDeadlineTimer deadline(patience);
    while (true) {
        switch (deliver(m_socketPath, url, deadline)) {
        case Delivery::taken:
            return Start::handedOver;
        case Delivery::noAnswer:
            return Start::noAnswer;
        case Delivery::tooLong:
            return Start::urlTooLong;
        case Delivery::nobodyThere:
            break;
        }
        if (m_lock->tryLock(0))
            return listen();
        if (m_lock->error() != QLockFile::LockFailedError) {
            m_refusal = "No lock could be made beside " + m_socketPath;
            return Start::unavailable;
        }
        if (deadline.hasExpired())
            break;
        pause(); // the one that holds the lock is about to listen, or to end
    }
    // A dead program's lock is kept for it if its process number belongs to a new one of the same name. The system
    // itself knows better: it lets a lock be removed that nobody holds.
    return m_lock->removeStaleLockFile() && m_lock->tryLock(0) ? listen() : Start::noAnswer;
}

SingleInstance::Start SingleInstance::listen() {
    const auto path = QString::fromStdString(m_socketPath);
    QLocalServer::removeServer(path); // left by one that was killed: the lock says that nobody listens there
    if (m_server.listen(path))
        return Start::first;
    m_refusal = "Cannot listen at " + m_socketPath + ": " + m_server.errorString().toStdString();
    m_lock->unlock();
    return Start::unavailable;
}

void SingleInstance::greet() {
    while (QLocalSocket* socket = m_server.nextPendingConnection()) {
        socket->setReadBufferSize(headBytes + 1 + longestUrl);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { receive(socket); });
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        QTimer::singleShot(longestReception, socket, &QObject::deleteLater);
    }
}

void SingleInstance::receive(QLocalSocket* socket) {
    const QByteArray head = socket->peek(headBytes);
    const bool isWhole = head.size() == headBytes;
    const qint64 length = isWhole ? qint64{qFromBigEndian<quint32>(head.constData() + magicBytes)} : 1;
    if (!head.startsWith(magic().left(head.size())) || length < 1 || length > 1 + longestUrl) {
        socket->disconnect(this);
        socket->deleteLater();
        return;
    }
    if (!isWhole || socket->bytesAvailable() < headBytes + length)
        return;
    socket->disconnect(this);
    socket->skip(headBytes);
    const auto content = readContent(socket->read(length));
    if (!content) {
        socket->deleteLater();
        return;
    }
    socket->write(&acknowledgement, 1);
    socket->flush(); // what is done about the message may take its time
    socket->disconnectFromServer();
    if (*content)
        Q_EMIT urlReceived(**content);
    else
        Q_EMIT raiseRequested();
}

} // namespace zuvo
