#include "ui/ThemePalette.h"

#include <QColor>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QUrl>
#include <QVariant>
#include <memory>

namespace zuvo {

namespace {

struct RoleColor {
    QPalette::ColorRole role;
    const char* name; ///< in Theme
};

// What Qt calls light and dark are the shades beside a button's own, meant for a light ground: on a dark one the
// "darker" shades are those that stand out more.
constexpr RoleColor roleColors[] = {
    {QPalette::Window, "background"},
    {QPalette::WindowText, "foreground"},
    {QPalette::Base, "surface"},
    {QPalette::AlternateBase, "surfaceHover"},
    {QPalette::Text, "foreground"},
    {QPalette::PlaceholderText, "textMuted"},
    {QPalette::Button, "surfaceHover"},
    {QPalette::ButtonText, "foreground"},
    {QPalette::BrightText, "foreground"},
    {QPalette::Light, "surfaceHover"},
    {QPalette::Midlight, "surfaceHover"},
    {QPalette::Mid, "border"},
    {QPalette::Dark, "textMuted"},
    {QPalette::Shadow, "background"},
    {QPalette::Highlight, "accent"},
    {QPalette::Link, "torchGlow"},
    {QPalette::LinkVisited, "textSecondary"},
    {QPalette::ToolTipBase, "cardBg"},
    {QPalette::ToolTipText, "foreground"},
};

constexpr QPalette::ColorRole inks[] = {QPalette::WindowText, QPalette::Text, QPalette::ButtonText};

} // namespace

QPalette paletteOfTheme(QQmlEngine& engine) {
    QQmlComponent component(&engine);
    component.setData("import QtQml\nimport Zuvo\nQtObject { readonly property QtObject theme: Theme }", QUrl());
    const std::unique_ptr<QObject> holder(component.create());
    const auto* theme = holder ? holder->property("theme").value<QObject*>() : nullptr;
    QPalette palette;
    if (theme == nullptr)
        return palette;
    for (const auto& [role, name] : roleColors)
        palette.setColor(role, theme->property(name).value<QColor>());
    palette.setColor(QPalette::HighlightedText, Qt::white);
    for (const auto ink : inks)
        palette.setColor(QPalette::Disabled, ink, theme->property("textMuted").value<QColor>());
    return palette;
}

} // namespace zuvo
