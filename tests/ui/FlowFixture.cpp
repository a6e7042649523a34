#include "ui/FlowFixture.h"

#include "resolve/Scripts.h"

#include <QCoreApplication>
#include <QCoroFuture>
#include <QCoroTimer>
#include <QDateTime>
#include <QDragEnterEvent>
#include <QDragLeaveEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QStringList>
#include <QWheelEvent>
#include <algorithm>

namespace zuvo::tests {

QCoro::Task<ProcessOutcome> ChosenTools::run(ProcessRequest request) {
    requests.push_back(request);
    const auto rule = std::find_if(m_answers.rbegin(), m_answers.rend(),
                                   [&request](const auto& answer) { return answer.first(request); });
    if (rule != m_answers.rend()) {
        auto outcome = rule->second;
        // Nothing is answered before the event loop has turned once, as in life.
        co_await QCoro::sleepFor(std::chrono::milliseconds(0));
        co_return outcome;
    }
    if (m_held && m_held(request)) {
        const auto gate = m_gate;
        co_await gate->future();
    }
    co_return co_await m_real->run(std::move(request));
}

void ChosenTools::release() {
    m_held = {};
    if (m_gate)
        m_gate->finish();
}

void ChosenTools::answer(Matcher matches, ProcessOutcome outcome) {
    m_answers.emplace_back(std::move(matches), std::move(outcome));
}

ChosenTools::Matcher probing(std::string pathEnd) {
    return [pathEnd = std::move(pathEnd)](const ProcessRequest& request) {
        return request.program.ends_with("ffprobe") && !request.arguments.empty() &&
               request.arguments.back().ends_with(pathEnd);
    };
}

FlowFixture::FlowFixture() : tools(std::make_shared<ChosenTools>(world.platform.processes)) {
    world.platform.processes = tools;
    world.givenSignedInBefore();
}

void FlowFixture::launch() {
    world.launch();
    driver = std::make_unique<WindowDriver>(&world.content());
    ASSERT_TRUE(waitUntil([this] { return world.content().isSignedIn(); }));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("filesTab")));
}

void FlowFixture::givenResolve(const std::string& project, const std::string& timelines) {
    const auto lib = world.platform.environment.resolveScriptLib;
    const auto runs = [](std::string script) {
        return [script = std::move(script)](const ProcessRequest& request) {
            return request.arguments.size() == 2 && request.arguments.back() == script;
        };
    };
    tools->answer(runs(projectNameScript(lib)), {true, {}, true, project + "\n", {}});
    tools->answer(runs(timelineNamesScript(lib)), {true, {}, true, timelines, {}});
}

QUrl FlowFixture::givenFile(const std::string& name) {
    return QUrl::fromLocalFile(QString::fromStdString(world.disk().write("footage/" + name, "no media")));
}

QUrl FlowFixture::sample(int number) {
    return QUrl::fromLocalFile(standin::StandIn::defaultSampleFolder() +
                               QStringLiteral("/harbour_interview_0%1.m4a").arg(number));
}

void FlowFixture::dragOver(const QList<QUrl>& urls) {
    QMimeData data;
    data.setUrls(urls);
    dragOver(data);
}

void FlowFixture::drop(const QList<QUrl>& urls) {
    QMimeData data;
    data.setUrls(urls);
    drop(data);
}

void FlowFixture::dragOver(const QMimeData& data) {
    const auto* zone = driver->find(QStringLiteral("dropZone"));
    ASSERT_NE(zone, nullptr);
    const auto place = zone->mapToScene(QPointF(zone->width() / 2, zone->height() / 2));
    QDragEnterEvent enter(place.toPoint(), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&driver->window(), &enter);
    QDragMoveEvent move(place.toPoint() + QPoint(2, 2), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&driver->window(), &move);
}

void FlowFixture::drop(const QMimeData& data) {
    dragOver(data);
    const auto* zone = driver->find(QStringLiteral("dropZone"));
    ASSERT_NE(zone, nullptr);
    QDropEvent event(zone->mapToScene(QPointF(zone->width() / 2, zone->height() / 2)), Qt::CopyAction, &data,
                     Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&driver->window(), &event);
    EXPECT_TRUE(event.isAccepted());
}

void FlowFixture::dragAway() {
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(&driver->window(), &leave);
}

void FlowFixture::givenDialog(const QString& whatOpenDoes, const QList<QUrl>& urls) {
    auto* picker = driver->window().findChild<QObject*>(QStringLiteral("filePicker"));
    ASSERT_NE(picker, nullptr);
    auto* component = new QQmlComponent(qmlEngine(picker), picker);
    QStringList list;
    for (const auto& url : urls)
        list.append(QLatin1Char('"') + url.toString() + QLatin1Char('"'));
    component->setData(QStringLiteral("import QtQml\nQtObject { property list<url> selectedFiles: [%1]\n"
                                      "signal accepted()\nsignal rejected()\nfunction open() { %2(); } }")
                           .arg(list.join(QLatin1Char(',')), whatOpenDoes)
                           .toUtf8(),
                       QUrl());
    ASSERT_TRUE(component->isReady()) << component->errorString().toStdString();
    picker->setProperty("dialog", QVariant::fromValue(component));
}

void FlowFixture::givenDialogGives(const QList<QUrl>& urls) {
    givenDialog(QStringLiteral("accepted"), urls);
}

void FlowFixture::givenDialogIsDismissed() {
    givenDialog(QStringLiteral("rejected"), {});
}

void FlowFixture::scrollTo(const QString& name) {
    auto& window = driver->window();
    const QPointF middle(window.width() * 0.6, window.height() * 0.6);
    constexpr int mostTurns = 60;
    for (int turn = 0; turn < mostTurns; ++turn) {
        const auto* item = driver->find(name);
        ASSERT_NE(item, nullptr) << name.toStdString();
        if (item->mapToScene(QPointF(0, item->height())).y() < window.height())
            return;
        QWheelEvent wheel(middle, window.mapToGlobal(middle), QPoint(), QPoint(0, -120), Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        // A list takes its speed from the time between two turns.
        wheel.setTimestamp(static_cast<quint64>(QDateTime::currentMSecsSinceEpoch()));
        QCoreApplication::sendEvent(&window, &wheel);
        runEventLoop(std::chrono::milliseconds(30));
    }
    FAIL() << name.toStdString() << " does not come into view";
}

void FlowFixture::tabTo(const QString& name) {
    constexpr int mostStops = 80;
    for (int stop = 0; stop < mostStops; ++stop) {
        if (driver->focusedName() == name)
            return;
        driver->press(Qt::Key_Tab);
    }
    FAIL() << "The keyboard does not reach " << name.toStdString();
}

void FlowFixture::pressByKeyboard(const QString& name) {
    tabTo(name);
    driver->press(Qt::Key_Return);
}

void FlowFixture::launchAndChooseTheSampleByKeyboard() {
    launch();
    givenDialogGives({sample(1), sample(2)});
    pressByKeyboard(QStringLiteral("browseButton"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("actionButton")));
}

void FlowFixture::thenStepIs(MineStep step) {
    EXPECT_TRUE(waitUntil([this, step] { return flow().currentStep() == step; }))
        << "The flow stands at step " << flow().currentStepNumber();
    constexpr std::chrono::milliseconds pageChange{450};
    runEventLoop(pageChange);
}

std::vector<std::string> FlowFixture::fileNames() {
    std::vector<std::string> names;
    for (const auto& file : flow().droppedFiles())
        names.push_back(file.filename().toStdString());
    return names;
}

} // namespace zuvo::tests
