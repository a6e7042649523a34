#include "standin/GuidedCommand.h"

#include <QProcessEnvironment>
#include <csignal>
#include <cstdio>

namespace zuvo::standin {

namespace {

/// What shells give for a program that is not there.
constexpr int notStarted = 127;
constexpr int endedByASignal = 1;

QProcessEnvironment environmentWith(const StandIn& standIn) {
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("OPENAI_BASE_URL"), standIn.transcriptionBase());
    environment.insert(QStringLiteral("ANTHROPIC_BASE_URL"), standIn.messagesBase());
    environment.insert(QStringLiteral("ZUVO_SERVICE_URL"), standIn.accountBase());
    for (const char* key : {"OPENAI_API_KEY", "ANTHROPIC_API_KEY"})
        environment.insert(QString::fromLatin1(key), QStringLiteral("made-up-key"));
    return environment;
}

} // namespace

GuidedCommand::GuidedCommand(const StandIn& standIn, const QStringList& words) {
    m_process.setProcessEnvironment(environmentWith(standIn));
    m_process.setProgram(words.constFirst());
    m_process.setArguments(words.mid(1));
    m_process.setProcessChannelMode(QProcess::ForwardedChannels);
    m_process.setInputChannelMode(QProcess::ForwardedInputChannel);
    connect(&m_process, &QProcess::errorOccurred, this, &GuidedCommand::noteFailure);
    connect(&m_process, &QProcess::finished, this, [this](int status, QProcess::ExitStatus way) {
        Q_EMIT ended(way == QProcess::NormalExit ? status : endedByASignal);
    });
}

void GuidedCommand::start() {
    m_process.start();
}

void GuidedCommand::passOn(int signal) {
    if (signal != SIGINT)
        m_process.terminate();
}

void GuidedCommand::noteFailure(QProcess::ProcessError error) {
    if (error != QProcess::FailedToStart)
        return; // it has ended, which is told by itself
    std::fprintf(stderr, "zuvo-standin: %s: %s\n", qPrintable(m_process.program()),
                 qPrintable(m_process.errorString()));
    Q_EMIT ended(notStarted);
}

} // namespace zuvo::standin
