#pragma once

#include "ui/WindowEngine.h"

#include <QImage>
#include <QPoint>
#include <QQuickItem>
#include <QString>
#include <functional>

namespace zuvo::tests {

/// The window under the hands of a user: it finds what is on screen by its name, points, types and looks.
///
/// Every operation fails the test, and changes nothing, if what it names is not on screen.
class WindowDriver {
public:
    explicit WindowDriver(ContentViewModel* content);

    [[nodiscard]] QQuickWindow& window() { return *m_engine.window(); }
    [[nodiscard]] WindowEngine& engine() { return m_engine; }

    /// The visible item of that objectName, or nullptr.
    [[nodiscard]] QQuickItem* find(const QString& name);
    [[nodiscard]] bool shows(const QString& name) { return find(name) != nullptr; }
    /// Waits for it; false if it does not come.
    [[nodiscard]] bool waitFor(const QString& name);
    [[nodiscard]] bool waitUntilGone(const QString& name);

    /// A visible text that is exactly this; waits for it.
    [[nodiscard]] bool waitForText(const QString& text);
    [[nodiscard]] bool showsText(const QString& text);

    void click(const QString& name);
    void click(QPoint place);
    void hover(const QString& name);
    void type(const QString& text);
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);

    /// The objectName of what has the keyboard, or of the nearest named item around it.
    [[nodiscard]] QString focusedName();

    /// Lets animations come to their end and gives what the window shows.
    [[nodiscard]] QImage picture();

    void resize(int width, int height);

private:
    WindowEngine m_engine;
};

} // namespace zuvo::tests
