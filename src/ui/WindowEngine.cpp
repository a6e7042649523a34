#include "ui/WindowEngine.h"

#include "ui/MapCardFaces.h"
#include "ui/Shadows.h"
#include "ui/Symbols.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QRectF>
#include <QScreen>
#include <QThreadPool>
#include <QUrl>
#include <QVariantMap>

/// Written by Qt's build tools for this module; it has no plugin that would call it.
extern void qml_register_types_Zuvo();

namespace zuvo {

void prepareEngine(QQmlEngine& engine) {
    static const bool isRegistered = (qml_register_types_Zuvo(), true);
    Q_UNUSED(isRegistered)
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.addImageProvider(QStringLiteral("symbols"), new SymbolProvider); // the engine owns its providers
    engine.addImageProvider(QStringLiteral("shadows"), new ShadowProvider);
    engine.addImageProvider(QStringLiteral("mapcards"), new MapCardFaces);
}

WindowEngine::WindowEngine(ContentViewModel* content) {
    // The desktop's fonts are looked through while the pages are read: a sixth of what a start costs. Whoever asks for
    // a font first waits for the end of that.
    QThreadPool::globalInstance()->start([] { (void)QFontDatabase::families(); });
    prepareEngine(m_engine);
    QVariantMap properties;
    properties[QStringLiteral("content")] = QVariant::fromValue(content);
    // Of one screen: several that stand side by side are no room for one window.
    if (const auto* screen = QGuiApplication::primaryScreen())
        properties[QStringLiteral("room")] = QRectF(screen->availableGeometry());
    m_engine.setInitialProperties(properties);
    m_engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Zuvo/AppWindow.qml")));
    if (!m_engine.rootObjects().isEmpty())
        m_window = qobject_cast<QQuickWindow*>(m_engine.rootObjects().constFirst());
}

void WindowEngine::bringUp() {
    if (m_window != nullptr)
        QMetaObject::invokeMethod(m_window, "bringUp");
}

} // namespace zuvo
