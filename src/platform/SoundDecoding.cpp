#include "platform/SoundDecoding.h"

#include "base/Numbers.h"
#include "platform/ChildEnvironment.h"

#include <QStringList>
#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#ifdef Q_OS_LINUX
#include <sys/prctl.h>
#endif
#include <unistd.h>
#include <utility>

namespace zuvo {

namespace {

constexpr int microsecondDigits = 6;

QStringList argumentsFor(const std::string& path, double seconds, SoundFormat format) {
    // A path is never taken for another protocol or for an option, and a file that names others opens none over the
    // network. Sought before it is opened, the file is decoded from shortly before the place and cut at the sample.
    return {QStringLiteral("-nostdin"),
            QStringLiteral("-v"),
            QStringLiteral("error"),
            QStringLiteral("-protocol_whitelist"),
            QStringLiteral("file"),
            QStringLiteral("-ss"),
            QString::fromStdString(fixedText(seconds, microsecondDigits)),
            QStringLiteral("-i"),
            QStringLiteral("file:") + QString::fromStdString(path),
            QStringLiteral("-map"),
            QStringLiteral("0:a:0"),
            QStringLiteral("-ac"),
            QString::number(format.channels),
            QStringLiteral("-ar"),
            QString::number(format.sampleRate),
            QStringLiteral("-f"),
            Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? QStringLiteral("s16le") : QStringLiteral("s16be"),
            QStringLiteral("pipe:1")};
}

void closeOnExec(int descriptor) {
    ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
}

} // namespace

SoundDecoding::SoundDecoding(std::string ffmpeg, QObject* parent) : QObject(parent), m_ffmpeg(std::move(ffmpeg)) {
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            Q_EMIT failed();
    });
    connect(&m_process, &QProcess::finished, this, [this](int status, QProcess::ExitStatus how) {
        read(); // what it wrote last
        if (!m_hasDecoded && (status != 0 || how != QProcess::NormalExit))
            Q_EMIT failed();
    });
}

SoundDecoding::~SoundDecoding() {
    m_process.disconnect(this);
    m_notifier.reset();
    if (m_pipe >= 0)
        ::close(m_pipe);
    m_process.kill();
    m_process.waitForFinished();
}

void SoundDecoding::start(const std::string& path, double seconds, SoundFormat format) {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) {
        Q_EMIT failed();
        return;
    }
    for (const auto end : ends)
        closeOnExec(end);
    ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
    m_pipe = ends[0];
    m_notifier = std::make_unique<QSocketNotifier>(m_pipe, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &SoundDecoding::read);

    m_process.setProgram(QString::fromStdString(m_ffmpeg));
    m_process.setArguments(argumentsFor(path, std::max(seconds, 0.0), format));
    m_process.setProcessEnvironment(childEnvironment());
    m_process.setStandardInputFile(QProcess::nullDevice());
    m_process.setStandardErrorFile(QProcess::nullDevice());
    // QProcess would read whatever comes; a pipe of ours is read only as far as the sound is wanted.
    m_process.setStandardOutputFile(QProcess::nullDevice());
    m_process.setChildProcessModifier([write = ends[1]] {
        ::dup2(write, STDOUT_FILENO);
        ::setpgid(0, 0); // a Ctrl-C on the terminal reaches this program alone
#ifdef Q_OS_LINUX
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
    });
    m_process.start(QIODevice::ReadOnly);
    ::close(ends[1]);
}

QByteArray SoundDecoding::take(qsizetype atMost) {
    auto taken = m_decoded.left(atMost);
    m_decoded.remove(0, taken.size());
    if (m_notifier && m_pipe >= 0 && m_decoded.size() < ahead)
        m_notifier->setEnabled(true);
    return taken;
}

void SoundDecoding::read() {
    if (m_pipe < 0)
        return;
    std::array<char, 16 * 1024> bytes{};
    bool hasArrived = false;
    while (m_decoded.size() < ahead) {
        const auto count = ::read(m_pipe, bytes.data(), bytes.size());
        if (count > 0) {
            m_decoded.append(bytes.data(), count);
            hasArrived = true;
            continue;
        }
        if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
            m_notifier->setEnabled(false);
            ::close(std::exchange(m_pipe, -1));
        }
        break;
    }
    if (m_decoded.size() >= ahead)
        m_notifier->setEnabled(false);
    m_hasDecoded = m_hasDecoded || hasArrived;
    if (hasArrived)
        Q_EMIT arrived();
}

} // namespace zuvo
