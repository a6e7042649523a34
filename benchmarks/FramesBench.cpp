// What a frame of the review page costs while a long story is scrolled, panned and searched, against the same movement
// of bare rectangles in the same run. Drawn without a graphics card, to no screen, unless QT_QPA_PLATFORM and
// QT_QUICK_BACKEND say otherwise. A screen of 60 Hz gives a frame 16.7 ms.

#include "ui/ReviewPageModel.h"
#include "ui/WindowEngine.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQuickItem>
#include <QQuickStyle>
#include <QQuickWindow>
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <fmt/format.h>
#include <functional>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace zuvo;

constexpr int frameCount = 300;
constexpr QSize windowSize{1100, 750};

std::vector<StorySegment> story(int count) {
    std::vector<StorySegment> segments;
    for (int i = 0; i < count; ++i) {
        const auto start = 30.0 * i;
        segments.push_back({i, start, start + 25.5, "faro_01.wav",
                            "Mi abuelo encendía el faro todas las noches, con niebla o sin ella. Decía que la luz no "
                            "era para nosotros, era para el que venía lejos.",
                            "My grandfather lit the lighthouse every night.",
                            std::string("Chapter ") + std::to_string(i / 50 + 1)});
    }
    return segments;
}

std::vector<TranscriptSegment> transcript(int count) {
    std::vector<TranscriptSegment> lines;
    for (int i = 0; i < count; ++i)
        lines.push_back({4.5 * i, 4.5 * i + 4.2, "La mar te enseña a esperar, y también que no siempre sirve.", "es"});
    return lines;
}

/// An item of the page in a window of its own.
class Scene {
public:
    Scene(const QByteArray& qml, ReviewPageModel* page) {
        prepareEngine(m_engine);
        m_window.resize(windowSize);
        QQmlComponent component(&m_engine);
        component.setData("import QtQuick\nimport Zuvo\n" + qml, QUrl());
        m_item.reset(qobject_cast<QQuickItem*>(
            page == nullptr
                ? component.create()
                : component.createWithInitialProperties({{QStringLiteral("model"), QVariant::fromValue(page)},
                                                         {QStringLiteral("width"), windowSize.width()},
                                                         {QStringLiteral("height"), windowSize.height()}})));
        if (!m_item)
            throw std::runtime_error(component.errorString().toStdString());
        m_item->setParentItem(m_window.contentItem());
        m_window.show();
        settle();
    }

    [[nodiscard]] QQuickItem* find(const char* name) {
        auto* found = findIn(m_item.get(), QString::fromUtf8(name));
        if (found == nullptr)
            throw std::runtime_error(std::string("There is no ") + name);
        return found;
    }

    /// Milliseconds of the processor for each frame, those of all threads: the change, what follows from it, and the
    /// drawing. Pieces drawn by several threads count as often, so that more may be told than passes.
    std::vector<double> frames(const std::function<void(int)>& change) {
        std::vector<double> milliseconds;
        for (int i = 0; i < frameCount; ++i) {
            const auto begin = std::clock();
            change(i);
            QEvent update(QEvent::UpdateRequest);
            QCoreApplication::sendEvent(&m_window, &update);
            milliseconds.push_back(1000.0 * static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC);
            // What may wait until after the frame, and what a running loop deletes.
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
        return milliseconds;
    }

private:
    static QQuickItem* findIn(QQuickItem* item, const QString& name) {
        if (item->objectName() == name)
            return item;
        for (auto* child : item->childItems()) {
            if (auto* found = findIn(child, name))
                return found;
        }
        return nullptr;
    }

    void settle() {
        constexpr int longEnoughMs = 700;
        QElapsedTimer time;
        time.start();
        while (time.elapsed() < longEnoughMs)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }

    QQmlEngine m_engine;
    QQuickWindow m_window;
    std::unique_ptr<QQuickItem> m_item;
};

double mean(const std::vector<double>& values) {
    return std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
}

void report(const char* name, const std::vector<double>& ours, const std::vector<double>& baseline) {
    constexpr double frameMs = 16.7;
    const auto late = std::count_if(ours.begin(), ours.end(), [](double ms) { return ms > frameMs; });
    fmt::print("{:<34} ratio {:>6.2f}  mean {:>6.2f} ms  worst {:>6.2f} ms  late {} of {}  baseline mean {:.2f} ms "
               "worst {:.2f} ms\n",
               name, mean(ours) / mean(baseline), mean(ours), *std::max_element(ours.begin(), ours.end()), late,
               ours.size(), mean(baseline), *std::max_element(baseline.begin(), baseline.end()));
    std::fflush(stdout);
}

std::unique_ptr<ReviewPageModel> pageWith(int segments, int lines) {
    auto page = std::make_unique<ReviewPageModel>();
    page->show(story(segments), {}, transcript(lines));
    return page;
}

constexpr int scrollStep = 37; // a brisk turn of the wheel; a new card comes in at every third frame

void list() {
    const auto page = pageWith(500, 0);
    Scene cards("SegmentList { }", page.get());
    auto* list = cards.find("segmentList");
    const auto ours = cards.frames([&](int i) { list->setProperty("contentY", scrollStep * i); });
    Scene rectangles(R"(ListView {
        objectName: "list"; width: 1100; height: 750; model: 500; spacing: 8; cacheBuffer: 400
        delegate: Rectangle { x: 32; width: 1036; height: 88; radius: 12; color: "#241F19" }
    })",
                     nullptr);
    auto* bare = rectangles.find("list");
    report("list of 500 cards, scrolled", ours,
           rectangles.frames([&](int i) { bare->setProperty("contentY", scrollStep * i); }));
}

void map() {
    const auto page = pageWith(300, 0);
    Scene cards("MapArtboardView { }", page.get());
    const auto ours = cards.frames([&](int i) { page->map()->pan(i < frameCount / 2 ? -9 : 9, -6); });
    Scene rectangles(R"(Item {
        id: board; objectName: "board"; width: 1100; height: 750
        Repeater {
            model: 300
            Rectangle { x: (index % 12) * 95; y: Math.floor(index / 12) * 90; width: 92; height: 72; radius: 8; color: "#241F19" }
        }
    })",
                     nullptr);
    auto* bare = rectangles.find("board");
    report("map of 300 cards, panned", ours, rectangles.frames([&](int i) {
        bare->setX(-2.7 * std::min(i, frameCount - i));
        bare->setY(-1.8 * i);
    }));
    auto* dragged = cards.find("mapCard7");
    const auto id = page->segments()[7].id();
    const auto moved = cards.frames([&](int i) { page->map()->moveCard(id, 300 + i, 200 + i % 40); });
    report("map of 300 cards, one dragged", moved, rectangles.frames([&](int i) { bare->setX(i); }));
    if (dragged->x() < 300)
        throw std::runtime_error("The card did not move");
    const auto pinch = [](int i) { return i < frameCount / 3 ? 1.0 - 0.006 * i : 0.4 + 0.008 * (i - frameCount / 3); };
    report("map of 300 cards, zoomed", cards.frames([&](int i) { page->map()->zoom(pinch(i)); }),
           rectangles.frames([&](int i) { bare->setScale(pinch(i)); }));
}

void echo() {
    const auto page = pageWith(1, 50000);
    Scene view("EchoView { }", page.get());
    const char* const searches[] = {"m", "ma", "mar", "ma", "m", ""};
    const auto ours =
        view.frames([&](int i) { page->setTranscriptSearch(QString::fromUtf8(searches[std::size_t(i) % 6])); });
    Scene plain(R"(ListView {
        objectName: "list"; width: 1100; height: 750; model: 50000
        delegate: Text { height: 39; text: "La mar te ense\u00f1a a esperar, y tambi\u00e9n que no siempre sirve." }
    })",
                nullptr);
    auto* bare = plain.find("list");
    report("Echo of 50000 lines, a key typed", ours,
           plain.frames([&](int i) { bare->setProperty("model", 50000 - i % 6); }));
    auto* lines = view.find("echoList");
    report("Echo of 50000 lines, scrolled", view.frames([&](int i) { lines->setProperty("contentY", scrollStep * i); }),
           plain.frames([&](int i) { bare->setProperty("contentY", scrollStep * i); }));
}

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("QT_QUICK_BACKEND", "software");
    }
    const QGuiApplication application(argc, argv);
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    const auto wants = [&](const char* part) { return argc != 2 || std::string(argv[1]) == part; };
    if (wants("list"))
        list();
    if (wants("map"))
        map();
    if (wants("echo"))
        echo();
    return 0;
}
