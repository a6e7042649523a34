#include "ui/WindowDriver.h"

#include "fakes/CoroutineTest.h"
#include "support/ShownItems.h"

#include <QTest>
#include <gtest/gtest.h>
#include <stdexcept>

namespace zuvo::tests {

namespace {

/// Longer than any change of page.
constexpr std::chrono::milliseconds animationsEnd{450};

void collectShown(QQuickItem* item, std::vector<QQuickItem*>& found) {
    if (!item->isVisible() || item->opacity() <= 0.0)
        return;
    found.push_back(item);
    for (auto* child : item->childItems())
        collectShown(child, found);
}

} // namespace

WindowDriver::WindowDriver(ContentViewModel* content) : m_engine(std::make_unique<WindowEngine>(content)) {
    m_window = m_engine->window();
    if (m_window == nullptr)
        throw std::runtime_error("The window could not be made");
    open();
}

WindowDriver::WindowDriver(QQuickWindow& window) : m_window(&window) {
    open();
}

void WindowDriver::open() {
    m_window->show();
    if (!QTest::qWaitForWindowExposed(m_window))
        throw std::runtime_error("The window was not shown");
    m_window->requestActivate();
}

QQuickItem* WindowDriver::find(const QString& name) {
    return findShown(window().contentItem(),
                     [&name](const QQuickItem* item) { return item->objectName() == name && item->isEnabled(); });
}

QQuickItem* WindowDriver::findEvenDisabled(const QString& name) {
    return findShown(window().contentItem(), [&name](const QQuickItem* item) { return item->objectName() == name; });
}

std::vector<QQuickItem*> WindowDriver::shownItems() {
    std::vector<QQuickItem*> found;
    collectShown(window().contentItem(), found);
    return found;
}

bool WindowDriver::waitFor(const QString& name) {
    return waitUntil([this, &name] { return shows(name); });
}

bool WindowDriver::waitUntilGone(const QString& name) {
    return waitUntil([this, &name] { return !shows(name); });
}

bool WindowDriver::showsText(const QString& text) {
    return findShown(window().contentItem(),
                     [&text](const QQuickItem* item) { return item->property("text").toString() == text; }) != nullptr;
}

bool WindowDriver::waitForText(const QString& text) {
    return waitUntil([this, &text] { return showsText(text); });
}

void WindowDriver::click(const QString& name) {
    auto* item = find(name);
    if (item == nullptr) {
        ADD_FAILURE() << "There is no " << name.toStdString() << " to click";
        return;
    }
    click(middleOf(*item));
}

void WindowDriver::click(QPoint place) {
    QTest::mouseClick(&window(), Qt::LeftButton, Qt::NoModifier, place);
}

void WindowDriver::hover(const QString& name) {
    const auto* item = find(name);
    if (item == nullptr) {
        ADD_FAILURE() << "There is no " << name.toStdString() << " to point at";
        return;
    }
    // The pointer may stand there from an earlier window: it would not have moved.
    QTest::mouseMove(&window(), middleOf(*item) + QPoint(2, 2));
    QTest::mouseMove(&window(), middleOf(*item));
    runEventLoop(animationsEnd);
}

void WindowDriver::type(const QString& text) {
    for (const auto character : text)
        QTest::keyClick(&window(), character.toLatin1());
}

void WindowDriver::press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    QTest::keyClick(&window(), key, modifiers);
}

void WindowDriver::drag(QPoint from, QPoint way) {
    constexpr int steps = 10;
    // The window may move under the pointer: the places are those of the screen.
    const auto start = window().mapToGlobal(from);
    QTest::mousePress(&window(), Qt::LeftButton, Qt::NoModifier, from);
    for (int step = 1; step <= steps; ++step)
        QTest::mouseMove(&window(), window().mapFromGlobal(start + way * step / steps));
    QTest::mouseRelease(&window(), Qt::LeftButton, Qt::NoModifier, window().mapFromGlobal(start + way));
}

bool WindowDriver::tabTo(const QString& name) {
    constexpr int moreThanAnyPageHas = 60;
    for (int presses = 0; presses < moreThanAnyPageHas; ++presses) {
        press(Qt::Key_Tab);
        if (focusedName() == name)
            return true;
    }
    return false;
}

QString WindowDriver::focusedName() {
    for (auto* item = window().activeFocusItem(); item != nullptr; item = item->parentItem()) {
        if (!item->objectName().isEmpty())
            return item->objectName();
    }
    return {};
}

QImage WindowDriver::picture() {
    runEventLoop(animationsEnd);
    return window().grabWindow();
}

void WindowDriver::resize(int width, int height) {
    window().resize(width, height);
    runEventLoop(std::chrono::milliseconds(20));
}

} // namespace zuvo::tests
