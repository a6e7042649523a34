#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <csignal>
#include <memory>
#include <utility>
#include <vector>

namespace zuvo {

/// Turns the signals that ask a program to end into a signal of the event loop: Ctrl-C (SIGINT), SIGTERM, and the end
/// of its terminal (SIGHUP). One that the program was started to ignore, as by nohup, stays ignored. One object at a
/// time in a program.
class Interrupts : public QObject {
    Q_OBJECT
public:
    explicit Interrupts(QObject* parent = nullptr);
    ~Interrupts() override; ///< Puts back what the program did before.

Q_SIGNALS:
    /// Once for every signal, with its number.
    void interrupted(int signal);

private:
    void handle(int signal);
    void readOne();

    std::unique_ptr<QSocketNotifier> m_notifier;
    std::vector<std::pair<int, struct sigaction>> m_before;
};

} // namespace zuvo
