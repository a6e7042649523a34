#include "ui/Fonts.h"

#include <QFontDatabase>

namespace zuvo {

namespace {

QString desktopFamily(QFontDatabase::SystemFont kind) {
    return QFontDatabase::systemFont(kind).family();
}

} // namespace

QString Fonts::firstInstalled(const QStringList& wanted, const QStringList& installed, const QString& fallback) {
    for (const auto& family : wanted) {
        if (installed.contains(family, Qt::CaseInsensitive))
            return family;
    }
    return fallback;
}

Fonts::Fonts(QObject* parent) : QObject(parent) {
    const auto installed = QFontDatabase::families();
    const auto general = desktopFamily(QFontDatabase::GeneralFont);
    m_text = firstInstalled({QStringLiteral("Inter"), QStringLiteral("SF Pro Text"), QStringLiteral("Noto Sans")},
                            installed, general);
    m_mono = firstInstalled({QStringLiteral("JetBrains Mono"), QStringLiteral("SF Mono"), QStringLiteral("Menlo"),
                             QStringLiteral("DejaVu Sans Mono")},
                            installed, desktopFamily(QFontDatabase::FixedFont));
    m_rounded = firstInstalled({QStringLiteral("Quicksand"), QStringLiteral("SF Pro Rounded")}, installed, m_text);
}

} // namespace zuvo
