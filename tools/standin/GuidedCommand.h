#pragma once

#include "standin/StandIn.h"

#include <QObject>
#include <QProcess>
#include <QStringList>

namespace zuvo::standin {

/// A program that is run with the stand-in in place of every service: its environment has the three addresses and
/// made-up keys, whatever keys the caller has. It shares the caller's terminal.
class GuidedCommand : public QObject {
    Q_OBJECT

public:
    /// `words` are the program, looked for in PATH, and its arguments; at least one. `standIn` is listening.
    GuidedCommand(const StandIn& standIn, const QStringList& words);

    void start();

    /// The program got a Ctrl-C from the terminal itself; any other wish to end is passed on to it.
    void passOn(int signal);

Q_SIGNALS:
    /// The exit status of the program; 127 if it could not be started, 1 if it ended in another way.
    void ended(int status);

private:
    void noteFailure(QProcess::ProcessError error);

    QProcess m_process;
};

} // namespace zuvo::standin
