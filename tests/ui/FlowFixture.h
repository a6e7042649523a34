#pragma once

#include "fakes/CoroutineTest.h"
#include "ui/UiWorld.h"
#include "ui/WindowDriver.h"

#include <QList>
#include <QMimeData>
#include <QPromise>
#include <QUrl>
#include <functional>
#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zuvo::tests {

/// The machine's own tools, of which a test may hold some back or answer for some.
class ChosenTools final : public ProcessRunner {
public:
    using Matcher = std::function<bool(const ProcessRequest&)>;

    explicit ChosenTools(std::shared_ptr<ProcessRunner> real) : m_real(std::move(real)) {}

    QCoro::Task<ProcessOutcome> run(ProcessRequest request) override;
    void endChildren() override { m_real->endChildren(); }

    /// Requests that match wait until `release`.
    void hold(Matcher matches) {
        m_held = std::move(matches);
        m_gate = std::make_shared<QPromise<void>>();
        m_gate->start();
    }
    void release();
    /// Requests that match are answered at once, the newest rule before the older ones.
    void answer(Matcher matches, ProcessOutcome outcome);

    std::vector<ProcessRequest> requests;

private:
    std::shared_ptr<ProcessRunner> m_real;
    Matcher m_held;
    std::shared_ptr<QPromise<void>> m_gate; ///< finishes when what is held may go on
    std::vector<std::pair<Matcher, ProcessOutcome>> m_answers;
};

/// Requests of ffprobe about a file whose path ends so.
[[nodiscard]] ChosenTools::Matcher probing(std::string pathEnd);

/// The window on The Mine of somebody who is signed in.
class FlowFixture : public testing::Test {
protected:
    FlowFixture();

    void launch();
    [[nodiscard]] MineViewModel& flow() { return *world.page<MineViewModel>(); }
    [[nodiscard]] LocalPipeline& pipeline() { return *flow().pipeline(); }

    /// Before `launch`: DaVinci Resolve answers with this project and these timelines, one on each line.
    void givenResolve(const std::string& project, const std::string& timelines);
    /// A file that holds no media; gives its URL.
    [[nodiscard]] QUrl givenFile(const std::string& name);
    [[nodiscard]] static QUrl sample(int number);

    /// Drags files over the drop zone and lets them go there.
    void drop(const QList<QUrl>& urls);
    void dragOver(const QList<QUrl>& urls);
    /// The same with data as another program hands it over.
    void drop(const QMimeData& data);
    void dragOver(const QMimeData& data);
    /// Takes what is held over the window away again.
    void dragAway();

    /// The file dialog gives these at once, whenever it is asked for.
    void givenDialogGives(const QList<QUrl>& urls);
    void givenDialogIsDismissed();
    /// Turns the wheel over the page until that control can be clicked.
    void scrollTo(const QString& name);
    /// Presses Tab until that control has the keyboard.
    void tabTo(const QString& name);
    /// The same, and then Return.
    void pressByKeyboard(const QString& name);
    /// The program starts, and the file dialog is asked for and gives both files of the sample.
    void launchAndChooseTheSampleByKeyboard();

    /// Waits until the page of that step has come in.
    void thenStepIs(MineStep step);
    [[nodiscard]] std::vector<std::string> fileNames();

    UiWorld world;
    std::shared_ptr<ChosenTools> tools;
    std::unique_ptr<WindowDriver> driver;

private:
    void givenDialog(const QString& whatOpenDoes, const QList<QUrl>& urls);
};

} // namespace zuvo::tests
