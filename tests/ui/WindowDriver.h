#pragma once

#include "ui/WindowEngine.h"

#include <QImage>
#include <QPoint>
#include <QQuickItem>
#include <QString>
#include <functional>
#include <memory>
#include <vector>

namespace zuvo::tests {

/// The window under the hands of a user: it finds what is on screen by its name, points, types and looks.
///
/// Every operation fails the test, and changes nothing, if what it names is not on screen.
class WindowDriver {
public:
    /// Opens the application's window.
    explicit WindowDriver(ContentViewModel* content);
    /// Opens a window of the test's, which must outlive it.
    explicit WindowDriver(QQuickWindow& window);

    [[nodiscard]] QQuickWindow& window() { return *m_window; }
    /// Of the application's window.
    [[nodiscard]] WindowEngine& engine() { return *m_engine; }

    /// The visible item of that objectName that can be used, or nullptr.
    [[nodiscard]] QQuickItem* find(const QString& name);
    /// The visible item of that objectName, whether or not it can be used, or nullptr.
    [[nodiscard]] QQuickItem* findEvenDisabled(const QString& name);
    /// All items that are to be seen, each before what lies on it.
    [[nodiscard]] std::vector<QQuickItem*> shownItems();
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

    /// Presses the left button there, moves by `way` in small steps, and lets go.
    void drag(QPoint from, QPoint way);

    /// Presses Tab until that control has the keyboard; false if it never gets it.
    [[nodiscard]] bool tabTo(const QString& name);

    /// The objectName of what has the keyboard, or of the nearest named item around it.
    [[nodiscard]] QString focusedName();

    /// Lets animations come to their end and gives what the window shows.
    [[nodiscard]] QImage picture();

    void resize(int width, int height);

private:
    void open();

    std::unique_ptr<WindowEngine> m_engine;
    QQuickWindow* m_window = nullptr;
};

} // namespace zuvo::tests
