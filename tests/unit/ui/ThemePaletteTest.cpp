#include "ui/ThemePalette.h"

#include "ui/WindowEngine.h"

#include <QColor>
#include <QQmlEngine>
#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

using namespace zuvo;

namespace {

double linear(double share) {
    return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

/// As the guidelines for readable web pages count it: 1 for the same colour, 21 for black on white.
double contrast(const QColor& a, const QColor& b) {
    const auto [darker, lighter] = std::minmax(luminance(a), luminance(b));
    return (lighter + 0.05) / (darker + 0.05);
}

QPalette palette() {
    QQmlEngine engine;
    prepareEngine(engine);
    return paletteOfTheme(engine);
}

} // namespace

TEST(ThemePalette, isTheDarkGroundAndItsInk) {
    const auto colors = palette();
    EXPECT_EQ(colors.color(QPalette::Window).name().toStdString(), "#1a1612");
    EXPECT_EQ(colors.color(QPalette::Base).name().toStdString(), "#211e18");
    EXPECT_EQ(colors.color(QPalette::Text).name().toStdString(), "#f5e6c8");
    EXPECT_EQ(colors.color(QPalette::Highlight).name().toStdString(), "#e8440a");
}

TEST(ThemePalette, everyTextCanBeReadOnItsGround) {
    const auto colors = palette();
    constexpr std::pair<QPalette::ColorRole, QPalette::ColorRole> pairs[] = {
        {QPalette::WindowText, QPalette::Window},    {QPalette::Text, QPalette::Base},
        {QPalette::Text, QPalette::AlternateBase},   {QPalette::ButtonText, QPalette::Button},
        {QPalette::PlaceholderText, QPalette::Base}, {QPalette::ToolTipText, QPalette::ToolTipBase},
        {QPalette::Link, QPalette::Window},          {QPalette::LinkVisited, QPalette::Window}};
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        for (const auto& [ink, ground] : pairs)
            EXPECT_GE(contrast(colors.color(group, ink), colors.color(group, ground)), 4.5) << ink << " on " << ground;
    }
    EXPECT_GE(contrast(colors.color(QPalette::HighlightedText), colors.color(QPalette::Highlight)), 3.0);
}
