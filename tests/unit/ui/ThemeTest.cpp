// The one place of colours, gradients, fonts, spacings and radii, against the table they come from.

#include "fakes/CoroutineTest.h"
#include "ui/Fonts.h"
#include "ui/WindowEngine.h"

#include <QColor>
#include <QFont>
#include <QJSValue>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQmlExpression>
#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <vector>

using namespace zuvo;

namespace {

class ThemeTest : public testing::Test {
protected:
    ThemeTest() {
        prepareEngine(m_engine);
        QQmlComponent component(&m_engine);
        component.setData("import QtQuick\nimport Zuvo\nQtObject { property var theme: Theme }", QUrl());
        m_holder.reset(component.create());
        EXPECT_NE(m_holder, nullptr) << component.errorString().toStdString();
    }

    /// What an expression of a page, with the theme as `theme`, comes to.
    QVariant read(const std::string& expression) {
        QQmlExpression reading(QQmlEngine::contextForObject(m_holder.get()), m_holder.get(),
                               QString::fromStdString(expression));
        bool isUndefined = false;
        const auto value = reading.evaluate(&isUndefined);
        EXPECT_FALSE(reading.hasError()) << reading.error().toString().toStdString();
        EXPECT_FALSE(isUndefined) << expression;
        return value;
    }

    /// "#rrggbb", or "#aarrggbb" of a colour that is not opaque.
    std::string color(const std::string& expression) {
        const auto value = read(expression).value<QColor>();
        return value.name(value.alpha() == 255 ? QColor::HexRgb : QColor::HexArgb).toStdString();
    }

    /// Each stop of a gradient as "position colour".
    std::vector<std::string> stops(const std::string& gradient) {
        std::vector<std::string> texts;
        const int count = read(gradient + ".stops.length").toInt();
        for (int i = 0; i < count; ++i) {
            const auto stop = gradient + ".stops[" + std::to_string(i) + "]";
            texts.push_back(read("'' + " + stop + ".position").toString().toStdString() + " " + color(stop + ".color"));
        }
        return texts;
    }

    QFont font(const std::string& call) { return read(call).value<QFont>(); }

    std::string firstStepColor(const std::string& index) { return color("theme.stepGradient(" + index + ")[0]"); }

private:
    QQmlEngine m_engine;
    std::unique_ptr<QObject> m_holder;
};

} // namespace

TEST_F(ThemeTest, everyColourIsThatOfTheTable) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"background", "#1a1612"},   {"foreground", "#f5e6c8"},    {"accent", "#e8440a"},
        {"accentHover", "#ff6a30"},  {"muted", "#211e18"},         {"border", "#3a3228"},
        {"textMuted", "#a89880"},    {"textSecondary", "#c4b8a0"}, {"surface", "#211e18"},
        {"surfaceHover", "#2a2520"}, {"cardBg", "#241f19"},        {"success", "#4a9e6d"},
        {"warning", "#d4a843"},      {"error", "#c44a3f"},         {"gemEmerald", "#4a9e6d"},
        {"gemSapphire", "#4a7eb5"},  {"gemAmethyst", "#8b5eb5"},   {"gemRuby", "#c44a3f"},
        {"gemTopaz", "#d4a843"},     {"gemOpal", "#7ebbb5"},       {"torchGlow", "#e8a040"},
        {"cardBorder", "#0ff5e6c8"}, // 0.06 of 255 is 15
    };
    EXPECT_EQ(rows.size(), 22U);
    for (const auto& [name, hex] : rows)
        EXPECT_EQ(color("theme." + name), hex) << name;
}

TEST_F(ThemeTest, theGemsOfTheChaptersStandInTheirOrder) {
    const std::vector<std::string> gems = {"#4a9e6d", "#4a7eb5", "#8b5eb5", "#c44a3f", "#d4a843", "#7ebbb5"};
    ASSERT_EQ(read("theme.chapterGems.length").toInt(), 6);
    for (std::size_t i = 0; i < gems.size(); ++i)
        EXPECT_EQ(color("theme.chapterGems[" + std::to_string(i) + "]"), gems[i]);
}

TEST_F(ThemeTest, everyGradientHasTheStopsOfTheTable) {
    using testing::ElementsAre;
    EXPECT_THAT(stops("theme.accentGradient"), ElementsAre("0 #e8440a", "1 #c43608"));
    EXPECT_THAT(stops("theme.subtleGradient"), ElementsAre("0 #0af5e6c8", "1 #00f5e6c8")); // 0.04 of 255 is 10
    EXPECT_THAT(stops("theme.glassGradient"), ElementsAre("0 #0ff5e6c8", "1 #05e8a040"));  // 0.06 and 0.02
    EXPECT_THAT(stops("theme.torchRadial"), ElementsAre("0 #14e8a040", "1 #00e8a040"));    // 0.08 of 255 is 20
}

TEST_F(ThemeTest, theGradientOfAStepTakesTheGemAtTheIndexCountedRoundAndRound) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"0", "#4a9e6d"},
        {"1", "#4a7eb5"},
        {"5", "#7ebbb5"},
        {"6", "#4a9e6d"},
        {"13", "#4a7eb5"},
        {"-1", "#7ebbb5"},
        {"-6", "#4a9e6d"},
        {"-7", "#7ebbb5"},
        {"2147483647", "#4a7eb5"},       // 6 * 357913941 + 1
        {"-2147483648", "#d4a843"},      // -2, from the end
        {"9007199254740991", "#4a7eb5"}, // 2^53 is 2 more than a multiple of 6
        {"2.9", "#8b5eb5"},              // an index is whole
        {"-0.5", "#4a9e6d"},
        {"", "#4a9e6d"}, // the first without an index
        {"undefined", "#4a9e6d"},
        {"null", "#4a9e6d"},
        {"NaN", "#4a9e6d"},
        {"Infinity", "#4a9e6d"},
        {"'no number'", "#4a9e6d"},
    };
    for (const auto& [index, hex] : rows) {
        EXPECT_EQ(firstStepColor(index), hex) << index;
        EXPECT_EQ(read("theme.stepGradient(" + index + ").length").toInt(), 2) << index;
        EXPECT_NE(color("theme.stepGradient(" + index + ")[1]"), hex) << index;
    }
}

TEST_F(ThemeTest, everyFontHasTheSizeAndWeightOfTheTable) {
    struct Row {
        std::string name;
        int size;
        QFont::Weight weight;
    };
    const std::vector<Row> rows = {
        {"largeTitle", 36, QFont::Bold},    {"title", 28, QFont::DemiBold}, {"title2", 22, QFont::Medium},
        {"headline", 16, QFont::DemiBold},  {"body", 14, QFont::Normal},    {"callout", 15, QFont::Normal},
        {"subheadline", 13, QFont::Normal}, {"caption", 12, QFont::Normal}, {"caption2", 11, QFont::Normal},
        {"mono", 12, QFont::Normal},
    };
    const Fonts fonts;
    for (const auto& row : rows) {
        const auto usual = font("theme." + row.name + "()");
        EXPECT_EQ(usual.pixelSize(), row.size) << row.name;
        EXPECT_EQ(usual.weight(), row.weight) << row.name;
        EXPECT_EQ(usual.family(), row.name == "mono" ? fonts.mono() : fonts.text()) << row.name;
        const auto other = font("theme." + row.name + "(19)");
        EXPECT_EQ(other.pixelSize(), 19) << row.name;
        EXPECT_EQ(other.weight(), row.weight) << row.name;
    }
}

TEST_F(ThemeTest, everySpacingIsTheNumberInItsName) {
    for (const int size : {2, 4, 6, 8, 12, 16, 20, 24, 32, 40, 48})
        EXPECT_EQ(read("theme.spacing" + std::to_string(size)).toInt(), size);
}

TEST_F(ThemeTest, theRadiiAreThoseOfTheTable) {
    EXPECT_EQ(read("theme.radiusXs").toInt(), 8);
    EXPECT_EQ(read("theme.radiusSm").toInt(), 12);
    EXPECT_EQ(read("theme.radiusMd").toInt(), 18);
    EXPECT_EQ(read("theme.radiusLg").toInt(), 24);
    EXPECT_EQ(read("theme.radiusXl").toInt(), 32);
}

TEST_F(ThemeTest, aColourFadesToTheOpacityThatIsAskedFor) {
    EXPECT_EQ(color("theme.faded(theme.accent, 0.2)"), "#33e8440a");
    EXPECT_EQ(color("theme.faded(theme.accent, 1)"), "#e8440a");
    EXPECT_EQ(color("theme.faded(theme.cardBorder, 0.2)"), "#33f5e6c8"); // in place of the colour's own
}

TEST_F(ThemeTest, aColourBetweenTwoLiesAtItsShareOfTheWay) {
    const auto between = [this](const std::string& from, const std::string& to, const std::string& share) {
        return color("theme.between(" + from + ", " + to + ", " + share + ")");
    };
    EXPECT_EQ(between("theme.background", "theme.accent", "0"), "#1a1612");
    EXPECT_EQ(between("theme.background", "theme.accent", "1"), "#e8440a");
    EXPECT_EQ(between("Qt.rgba(0, 0, 0, 1)", "Qt.rgba(1, 0.4, 0.2, 1)", "0.5"), "#80331a"); // 127.5, 51, 25.5
    EXPECT_EQ(between("theme.faded('#ff0000', 0)", "theme.faded('#ff0000', 0.8)", "0.5"), "#66ff0000"); // 102
}
