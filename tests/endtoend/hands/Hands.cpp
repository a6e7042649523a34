// Hands for the real ZuvoManager, whose window is on no screen. Qt loads them into the program as it would load the
// driver of an input device:
//
//     QT_PLUGIN_PATH={folder that holds "generic"} QT_QPA_GENERIC_PLUGINS=hands
//
// They take an order a line from standard input, and answer each with a line on standard output: "done", or "no" if
// what it names is not on screen, usable, at rest and within the window.
//
//     shows NAME           nothing is done; NAME is an item's objectName
//     click NAME           the left button goes down and up in its middle, if that is where it was at the last order
//     press KEY            such as "Space"; for whatever has the keyboard
//     drop PATH            that file is dragged onto the item "dropZone" and let go
//     resize WIDTH HEIGHT  of the window

#include "support/ShownItems.h"

#include <QDragEnterEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QGenericPlugin>
#include <QGuiApplication>
#include <QKeySequence>
#include <QMimeData>
#include <QQuickWindow>
#include <QSocketNotifier>
#include <QStringList>
#include <QTest>
#include <QUrl>
#include <array>
#include <cstdio>
#include <unistd.h>
#include <utility>

namespace zuvo::tests {

namespace {

QQuickWindow* shownWindow() {
    for (auto* window : QGuiApplication::topLevelWindows()) {
        if (auto* found = qobject_cast<QQuickWindow*>(window); found != nullptr && found->isVisible())
            return found;
    }
    return nullptr;
}

/// A page that comes or goes is seen through.
bool isAtRest(const QQuickItem* item) {
    for (; item != nullptr; item = item->parentItem()) {
        if (item->opacity() < 1.0)
            return false;
    }
    return true;
}

QQuickItem* usableItem(QQuickWindow& window, const QString& name) {
    auto* item = findShown(window.contentItem(),
                           [&name](const QQuickItem* one) { return one->objectName() == name && one->isEnabled(); });
    const bool isUsable =
        item != nullptr && isAtRest(item) && QRect(QPoint(0, 0), window.size()).contains(middleOf(*item));
    return isUsable ? item : nullptr;
}

void drop(QQuickWindow& window, QPoint place, const QString& path) {
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path)});
    QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&window, &enter);
    QDragMoveEvent move(place + QPoint(2, 2), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&window, &move);
    QDropEvent event(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&window, &event);
}

bool resize(QQuickWindow& window, const QStringList& sizes) {
    if (sizes.size() != 2)
        return false;
    window.resize(sizes[0].toInt(), sizes[1].toInt());
    return true;
}

bool press(QQuickWindow& window, const QString& key) {
    const auto keys = QKeySequence::fromString(key);
    if (keys.isEmpty() || window.activeFocusItem() == nullptr)
        return false;
    QTest::keyClick(&window, keys[0].key(), keys[0].keyboardModifiers());
    return true;
}

class Hands final : public QObject {
    Q_OBJECT
public:
    Hands() { connect(&m_orders, &QSocketNotifier::activated, this, &Hands::listen); }

private:
    void listen() {
        std::array<char, 1024> bytes{};
        const auto count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
        if (count <= 0) {
            m_orders.setEnabled(false);
            return;
        }
        m_heard.append(bytes.data(), count);
        for (auto end = m_heard.indexOf('\n'); end >= 0; end = m_heard.indexOf('\n')) {
            const auto order = QString::fromUtf8(m_heard.left(end));
            m_heard.remove(0, end + 1);
            std::puts(carryOut(order) ? "done" : "no");
            std::fflush(stdout);
        }
    }

    /// Whether it could be done.
    bool carryOut(const QString& order) {
        auto* window = shownWindow();
        if (window == nullptr)
            return false;
        const auto verb = order.section(QLatin1Char(' '), 0, 0);
        const auto object = order.section(QLatin1Char(' '), 1);
        if (verb == QLatin1String("resize"))
            return resize(*window, object.split(QLatin1Char(' ')));
        if (verb == QLatin1String("press"))
            return press(*window, object);
        const bool drops = verb == QLatin1String("drop");
        const auto* item = usableItem(*window, drops ? QStringLiteral("dropZone") : object);
        if (item == nullptr)
            return false;
        const auto place = middleOf(*item);
        if (drops)
            drop(*window, place, object);
        else if (verb == QLatin1String("click"))
            return click(*window, place);
        return true;
    }

    bool click(QQuickWindow& window, QPoint place) {
        if (std::exchange(m_lastPlace, place) != place)
            return false;
        QTest::mouseClick(&window, Qt::LeftButton, Qt::NoModifier, place);
        return true;
    }

    QSocketNotifier m_orders{STDIN_FILENO, QSocketNotifier::Read};
    QByteArray m_heard;
    QPoint m_lastPlace; ///< that was to be clicked at
};

class HandsPlugin final : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "hands.json")
public:
    QObject* create(const QString& name, const QString& /*settings*/) override {
        return name == QLatin1String("hands") ? new Hands : nullptr; // the application owns it
    }
};

} // namespace

} // namespace zuvo::tests

#include "Hands.moc"
