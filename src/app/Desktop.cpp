#include "app/Desktop.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDesktopServices>
#include <QFileInfo>
#include <QProcess>
#include <QStringList>
#include <QUrl>

namespace zuvo {

namespace {

#ifdef Q_OS_MACOS
bool showInFileManager(const QString& path) {
    return QProcess::startDetached(QStringLiteral("/usr/bin/open"), {QStringLiteral("-R"), path});
}
#else
bool showInFileManager(const QString& path) {
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call.setArguments({QStringList{QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded)}, QString()});
    constexpr int patienceMs = 2000;
    const auto answer = QDBusConnection::sessionBus().call(call, QDBus::Block, patienceMs);
    return answer.type() == QDBusMessage::ReplyMessage;
}
#endif

} // namespace

bool Desktop::openUrl(const std::string& url) {
    return QDesktopServices::openUrl(QUrl(QString::fromStdString(url), QUrl::StrictMode));
}

bool Desktop::openFile(const std::string& path) {
    return QDesktopServices::openUrl(QUrl::fromLocalFile(QString::fromStdString(path)));
}

bool Desktop::reveal(const std::string& path) {
    const auto shown = QString::fromStdString(path);
    if (showInFileManager(shown))
        return true;
    return QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(shown).absolutePath()));
}

} // namespace zuvo
