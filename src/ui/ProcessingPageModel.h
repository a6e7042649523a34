#pragma once

#include "ui/LogLinesModel.h"
#include "ui/MineViewModel.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <array>
#include <chrono>
#include <functional>
#include <memory>
#include <qqmlregistration.h>
#include <string_view>

namespace zuvo {

/// Calls `tick` again and again, each time after that long, for as long as what it returns lives.
using StartTimer = std::function<std::unique_ptr<QObject>(std::chrono::milliseconds, std::function<void()> tick)>;

extern const std::array<std::string_view, 10> FUN_FACTS;

/// The page "The Dig": where the run stands. It reads the pipeline; its one action is to cancel.
class ProcessingPageModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(zuvo::MineViewModel* flow READ flow WRITE setFlow NOTIFY flowChanged)
    Q_PROPERTY(QString heading READ heading NOTIFY dotsChanged)
    Q_PROPERTY(QString stage READ stage NOTIFY stageChanged)
    Q_PROPERTY(double progress READ progress NOTIFY progressChanged)
    Q_PROPERTY(QString creditsUsed READ creditsUsed NOTIFY progressChanged)
    Q_PROPERTY(QString funFact READ funFact NOTIFY currentFactChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
    Q_PROPERTY(bool hasError READ hasError NOTIFY errorMessageChanged)
    Q_PROPERTY(zuvo::LogLinesModel* log READ log CONSTANT)
public:
    explicit ProcessingPageModel(QObject* parent = nullptr);
    /// With timers of the caller's own.
    explicit ProcessingPageModel(const StartTimer& startTimer, QObject* parent = nullptr);

    [[nodiscard]] MineViewModel* flow() const { return m_flow; }
    void setFlow(MineViewModel* flow);

    [[nodiscard]] const QString& dots() const { return m_dots; }
    [[nodiscard]] QString heading() const; ///< with the dots behind it
    [[nodiscard]] QString stage() const;
    [[nodiscard]] double progress() const; ///< 0 to 1
    /// "0.5 credits used": the progress itself.
    [[nodiscard]] QString creditsUsed() const;
    [[nodiscard]] std::size_t currentFact() const { return m_currentFact; } ///< place in FUN_FACTS
    [[nodiscard]] QString funFact() const;
    [[nodiscard]] QString errorMessage() const; ///< without control characters
    [[nodiscard]] bool hasError() const;
    [[nodiscard]] LogLinesModel* log() { return &m_log; }

    /// Puts the log's lines from `first` to `last` on the clipboard; nothing for -1.
    Q_INVOKABLE void copyLines(int first, int last);
    /// Cancels the run; nothing if the flow has moved on by then.
    Q_INVOKABLE void cancel();

Q_SIGNALS:
    void flowChanged();
    void dotsChanged();
    void stageChanged();
    void progressChanged();
    void currentFactChanged();
    void errorMessageChanged();

private:
    void addDot();
    void nextFact();

    QPointer<MineViewModel> m_flow;
    LogLinesModel m_log;
    QString m_dots;
    std::size_t m_currentFact = 0;
    std::unique_ptr<QObject> m_dotTimer;
    std::unique_ptr<QObject> m_factTimer;
};

} // namespace zuvo
