#include "platform/Processes.h"

#include "platform/ChildEnvironment.h"

#include <QCoroFuture>
#include <QPromise>
#include <QString>
#include <QStringList>
#include <algorithm>
#include <csignal>
#include <memory>
#ifdef Q_OS_LINUX
#include <sys/prctl.h>
#endif
#include <sys/stat.h>
#include <unistd.h>

namespace zuvo {

namespace {

void configure(QProcess& process, const ProcessRequest& request) {
    process.setProgram(QString::fromStdString(request.program));
    QStringList arguments;
    for (const auto& argument : request.arguments)
        arguments.append(QString::fromStdString(argument));
    process.setArguments(arguments);

    auto environment = childEnvironment();
    for (const auto& [name, value] : request.variables)
        environment.insert(QString::fromStdString(name), QString::fromStdString(value));
    process.setProcessEnvironment(environment);

    if (!request.workingFolder.empty())
        process.setWorkingDirectory(QString::fromStdString(request.workingFolder));
    process.setStandardInputFile(QProcess::nullDevice());
    if (!request.keepsOutput)
        process.setStandardOutputFile(QProcess::nullDevice());
    if (!request.errorFile.empty())
        process.setStandardErrorFile(QString::fromStdString(request.errorFile));
    else if (!request.keepsError)
        process.setStandardErrorFile(QProcess::nullDevice());
    process.setChildProcessModifier([hasNoTerminal = request.hasNoTerminal, isPrivate = request.makesPrivateFiles] {
        if (isPrivate)
            ::umask(S_IRWXG | S_IRWXO);
        // A session of its own is a group of its own too.
        if (hasNoTerminal)
            ::setsid();
        else
            ::setpgid(0, 0);
#ifdef Q_OS_LINUX
        // In a group of its own it hears nothing of our end, so that a kill or a closed terminal would leave it
        // running.
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
    });
}

/// Appends what came, up to the limit; the rest is read and dropped, so that the child never waits for us.
void keep(std::string& text, const QByteArray& bytes) {
    const auto room = keptOutputLimit - std::min(keptOutputLimit, text.size());
    text.append(bytes.constData(), std::min(room, static_cast<std::size_t>(bytes.size())));
}

/// The child makes its group by itself; until it has come to that, the group would be missed. Whoever is second fails,
/// which is fine.
void makeGroup(const QProcess& process) {
    const auto id = static_cast<pid_t>(process.processId());
    if (id > 0)
        ::setpgid(id, id);
}

void endGroup(const QProcess& process) {
    const auto id = process.processId();
    if (id > 0)
        ::kill(-static_cast<pid_t>(id), SIGKILL);
}

} // namespace

ChildProcessRunner::~ChildProcessRunner() {
    endChildren();
}

QCoro::Task<ProcessOutcome> ChildProcessRunner::run(ProcessRequest request) {
    // Owned by this frame, so that it outlives the await whatever becomes of the runner.
    const auto process = std::make_unique<QProcess>();
    ProcessOutcome outcome;
    QPromise<void> ended;
    ended.start();
    const auto end = [&ended] {
        if (!ended.future().isFinished())
            ended.finish();
    };
    auto* child = process.get();
    QObject::connect(child, &QProcess::readyReadStandardOutput, child,
                     [&outcome, child] { keep(outcome.standardOutput, child->readAllStandardOutput()); });
    QObject::connect(child, &QProcess::readyReadStandardError, child,
                     [&outcome, child] { keep(outcome.standardError, child->readAllStandardError()); });
    QObject::connect(child, &QProcess::finished, child, end);
    // A child that cannot be started ends without `finished`.
    QObject::connect(child, &QProcess::errorOccurred, child, [&outcome, child, end](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            outcome.launchFailure = child->errorString().toStdString();
            end();
        }
    });
    configure(*child, request);
    std::erase_if(m_children, [](const QPointer<QProcess>& known) { return known.isNull(); });
    m_children.emplace_back(child);
    child->start(QIODevice::ReadOnly);
    if (!request.hasNoTerminal) // a child that leads a group already can make no session
        makeGroup(*child);
    co_await ended.future();

    outcome.launched = outcome.launchFailure.empty();
    if (outcome.launched && child->exitStatus() == QProcess::NormalExit)
        outcome.exitStatus = child->exitCode();
    outcome.succeeded = outcome.exitStatus == 0;
    co_return outcome;
}

void ChildProcessRunner::endChildren() {
    for (const auto& child : m_children) {
        if (!child.isNull() && child->state() != QProcess::NotRunning)
            endGroup(*child);
    }
}

} // namespace zuvo
