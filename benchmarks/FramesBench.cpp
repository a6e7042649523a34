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
#include <cmath>
#include <cstdio>
#include <ctime>
#include <fmt/format.h>
#include <functional>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <string>
#include <utility>
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

/// The same movement of stories of several sizes, told as a line for each and one for the growth.
class Movement {
public:
    explicit Movement(const char* name) : m_name(name) {}

    void report(int size, const std::vector<double>& ours, const std::vector<double>& baseline) {
        constexpr double frameMs = 16.7;
        const auto late = std::count_if(ours.begin(), ours.end(), [](double ms) { return ms > frameMs; });
        const auto worst = [](const std::vector<double>& frames) {
            return *std::max_element(frames.begin(), frames.end());
        };
        fmt::print("{}, {}: mean {:.2f} ms and worst {:.2f} ms with {} of {} late against {:.2f} ms and {:.2f} ms, "
                   "ratio {:.2f}\n",
                   m_name, size, mean(ours), worst(ours), late, ours.size(), mean(baseline), worst(baseline),
                   mean(ours) / mean(baseline));
        std::fflush(stdout);
        m_means.emplace_back(size, mean(ours));
    }

    void reportGrowth() const {
        const auto& [smallest, first] = m_means.front();
        const auto& [largest, last] = m_means.back();
        fmt::print("{}, growth: {} to {}, exponent {:.2f}\n", m_name, smallest, largest,
                   std::log(last / first) / std::log(static_cast<double>(largest) / smallest));
    }

private:
    const char* m_name;
    std::vector<std::pair<int, double>> m_means; ///< ours by size, in milliseconds
};

std::unique_ptr<ReviewPageModel> pageWith(int segments, int lines) {
    auto page = std::make_unique<ReviewPageModel>();
    page->show(story(segments), {}, transcript(lines));
    return page;
}

constexpr int scrollStep = 37; // a brisk turn of the wheel; a new card comes in at every third frame

void list() {
    Movement scrolled("frames of a list of so many cards, scrolled");
    for (const int count : {50, 500, 5000}) {
        const auto page = pageWith(count, 0);
        Scene cards("SegmentList { }", page.get());
        auto* list = cards.find("segmentList");
        const auto lastPlace = std::max(1.0, list->property("contentHeight").toDouble() - windowSize.height());
        const auto place = [&](int i) { return std::fmod(scrollStep * i, lastPlace); };
        const auto ours = cards.frames([&](int i) { list->setProperty("contentY", place(i)); });
        Scene rectangles(fmt::format(R"(ListView {{
            objectName: "list"; width: 1100; height: 750; model: {}; spacing: 8; cacheBuffer: 400
            delegate: Rectangle {{ x: 32; width: 1036; height: 88; radius: 12; color: "#241F19" }}
        }})",
                                     count)
                             .c_str(),
                         nullptr);
        auto* bare = rectangles.find("list");
        scrolled.report(count, ours, rectangles.frames([&](int i) { bare->setProperty("contentY", place(i)); }));
    }
    scrolled.reportGrowth();
}

/// What a pinch sets: inwards to the smallest scale, then outwards to the largest.
double pinch(int frame) {
    constexpr int inwards = frameCount / 3;
    return frame < inwards ? 1.0 - 0.006 * frame : 0.4 + 0.008 * (frame - inwards);
}

void map() {
    Movement panned("frames of a map of so many cards, panned");
    Movement dragged("frames of a map of so many cards, one dragged");
    Movement zoomed("frames of a map of so many cards, zoomed");
    for (const int count : {75, 300, 1200}) {
        const auto page = pageWith(count, 0);
        Scene cards("MapArtboardView { }", page.get());
        Scene rectangles(fmt::format(R"(Item {{
            id: board; objectName: "board"; width: 1100; height: 750
            Repeater {{
                model: {}
                Rectangle {{
                    x: (index % 12) * 95; y: Math.floor(index / 12) * 90
                    width: 92; height: 72; radius: 8; color: "#241F19"
                }}
            }}
        }})",
                                     count)
                             .c_str(),
                         nullptr);
        auto* bare = rectangles.find("board");
        const auto pan = cards.frames([&](int i) { page->map()->pan(i < frameCount / 2 ? -9 : 9, -6); });
        panned.report(count, pan, rectangles.frames([&](int i) {
            bare->setX(-2.7 * std::min(i, frameCount - i));
            bare->setY(-1.8 * i);
        }));
        const auto* card = cards.find("mapCard7");
        const auto id = page->segments()[7].id();
        const auto drag = cards.frames([&](int i) { page->map()->moveCard(id, 300 + i, 200 + i % 40); });
        dragged.report(count, drag, rectangles.frames([&](int i) { bare->setX(i); }));
        if (card->x() < 300)
            throw std::runtime_error("The card did not move");
        const auto zoom = cards.frames([&](int i) { page->map()->zoom(pinch(i)); });
        zoomed.report(count, zoom, rectangles.frames([&](int i) { bare->setScale(pinch(i)); }));
    }
    panned.reportGrowth();
    dragged.reportGrowth();
    zoomed.reportGrowth();
}

void echo() {
    Movement typed("frames of the Echo of so many lines, a key typed");
    Movement scrolled("frames of the Echo of so many lines, scrolled");
    for (const int count : {5000, 50000, 500000}) {
        const auto page = pageWith(1, count);
        Scene view("EchoView { }", page.get());
        const char* const searches[] = {"m", "ma", "mar", "ma", "m", ""};
        const auto keys =
            view.frames([&](int i) { page->setTranscriptSearch(QString::fromUtf8(searches[std::size_t(i) % 6])); });
        Scene plain(fmt::format(R"(ListView {{
            objectName: "list"; width: 1100; height: 750; model: {}
            delegate: Text {{
                height: 39; text: "La mar te ense\u00f1a a esperar, y tambi\u00e9n que no siempre sirve."
            }}
        }})",
                                count)
                        .c_str(),
                    nullptr);
        auto* bare = plain.find("list");
        typed.report(count, keys, plain.frames([&](int i) { bare->setProperty("model", count - i % 6); }));
        auto* lines = view.find("echoList");
        const auto rows = view.frames([&](int i) { lines->setProperty("contentY", scrollStep * i); });
        scrolled.report(count, rows, plain.frames([&](int i) { bare->setProperty("contentY", scrollStep * i); }));
    }
    typed.reportGrowth();
    scrolled.reportGrowth();
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
