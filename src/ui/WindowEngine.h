#pragma once

#include "ui/ContentViewModel.h"

#include <QQmlApplicationEngine>
#include <QQmlEngine>
#include <QQuickWindow>

namespace zuvo {

/// Gives an engine what the pages draw with: their module and the providers of symbols and shadows.
void prepareEngine(QQmlEngine& engine);

/// The application's window over its content. The content must outlive it.
class WindowEngine {
public:
    explicit WindowEngine(ContentViewModel* content);

    /// The window; nullptr if it could not be made.
    [[nodiscard]] QQuickWindow* window() const { return m_window; }

    /// Brings the window up, whatever hides it.
    void bringUp();

private:
    QQmlApplicationEngine m_engine;
    QQuickWindow* m_window = nullptr; ///< owned by the engine
};

} // namespace zuvo
