#include "platform/MineLock.h"

#include <QCryptographicHash>
#include <QString>

namespace zuvo {

namespace {

QString lockPath(const std::string& folder, const std::string& home) {
    const auto hash = QCryptographicHash::hash(QByteArray::fromStdString(home), QCryptographicHash::Sha256).toHex();
    constexpr int nameLength = 16;
    return QString::fromStdString(folder) + QStringLiteral("mine-") + QString::fromLatin1(hash.left(nameLength)) +
           QStringLiteral(".lock");
}

} // namespace

MineLock::MineLock(const Environment& environment) {
    const auto folder = environment.temporaryFolder();
    if (!folder) {
        m_refusal =
            "The folder for temporary files in " + environment.systemTemporaryFolder + " is not this user's own";
        return;
    }
    m_file = std::make_unique<QLockFile>(lockPath(*folder, environment.home));
    // A mine may take hours: only a holder that is gone makes the lock stale.
    m_file->setStaleLockTime(0);
    m_held = m_file->tryLock(0);
    if (!m_held)
        m_refusal = "Another mine is running under " + environment.home + ". Wait for it to end, then try again.";
}

} // namespace zuvo
