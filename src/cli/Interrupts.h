#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <memory>

namespace zuvo {

/// Turns Ctrl-C (and a request to terminate) into a signal of the event loop. One at a time in a program.
class Interrupts : public QObject {
    Q_OBJECT
public:
    explicit Interrupts(QObject* parent = nullptr);
    ~Interrupts() override;

Q_SIGNALS:
    /// Once for every press.
    void interrupted();

private:
    void readOne();

    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace zuvo
