// Every symbol that a page names has a drawing, in the colour that is asked for.

#include "ui/Symbols.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <algorithm>
#include <gmock/gmock.h>
#include <map>
#include <set>
#include <string>

using namespace zuvo;

namespace {

constexpr QSize usualSize(32, 32);

/// The pages' sources.
QStringList sources() {
    const QDir folder(QStringLiteral(ZUVO_TEST_FOLDER "/../src/ui"));
    QStringList paths;
    for (const auto& name : folder.entryList({QStringLiteral("*.cpp")}, QDir::Files))
        if (name != QLatin1String("Symbols.cpp"))
            paths.append(folder.filePath(name));
    const QDir pages(folder.filePath(QStringLiteral("qml")));
    for (const auto& name : pages.entryList({QStringLiteral("*.qml")}, QDir::Files))
        paths.append(pages.filePath(name));
    return paths;
}

QString textOf(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return QString::fromUtf8(file.readAll());
}

/// Symbol names in a source, each with the file it stands in. In QML a symbol is the text of `name`, `symbolName` or
/// `iconName`, alone or as one of the two outcomes of a condition; in C++ a text of the sidebar's or another list's
/// that looks like a symbol's name: words in small letters with dots between them.
void findSymbols(const QString& path, std::map<QString, QString>& found) {
    const auto text = textOf(path);
    if (path.endsWith(QLatin1String(".cpp"))) {
        static const QRegularExpression dotted(QStringLiteral(R"re(QStringLiteral\("([a-z]+(?:\.[a-z0-9]+)+)"\))re"));
        for (auto match = dotted.globalMatch(text); match.hasNext();)
            found.emplace(match.next().captured(1), path);
        return;
    }
    static const QRegularExpression lines(QStringLiteral(R"re(\b(?:name|symbolName|iconName|symbol)\s*:([^\n]*))re"));
    static const QRegularExpression words(QStringLiteral(R"re("([a-z0-9.]+)")re"));
    for (auto line = lines.globalMatch(text); line.hasNext();) {
        const auto value = line.next().captured(1);
        for (auto word = words.globalMatch(value); word.hasNext();)
            found.emplace(word.next().captured(1), path);
    }
}

/// Pixels that are not clear.
int inkedPixels(const QImage& image) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += image.pixelColor(x, y).alpha() > 0 ? 1 : 0;
    return count;
}

} // namespace

TEST(Symbols, everySymbolThatAPageNamesIsInTheTable) {
    std::map<QString, QString> found;
    for (const auto& path : sources())
        findSymbols(path, found);
    const auto known = symbolNames();
    for (const auto& [name, path] : found)
        EXPECT_TRUE(known.contains(name)) << name.toStdString() << " in " << path.toStdString();
    // The scan sees what it is for: three of the sidebar's, and those of the account, sign-in and plugin pages.
    EXPECT_GE(found.size(), 17U);
    for (const auto* name :
         {"person.circle", "waveform.badge.magnifyingglass", "arrow.triangle.2.circlepath", "arrow.clockwise",
          "diamond.fill", "plus.circle.fill", "creditcard.fill", "rectangle.portrait.and.arrow.right", "globe",
          "key.fill", "exclamationmark.triangle.fill", "puzzlepiece.extension.fill", "trash.fill",
          "square.and.arrow.down.fill", "checkmark.circle.fill", "arrow.down.circle.fill", "checkmark"})
        EXPECT_EQ(found.count(QString::fromUtf8(name)), 1U) << name;
}

TEST(Symbols, everyRowHasADrawingInTheColourAskedFor) {
    const QColor color(0x12, 0x34, 0x56);
    const auto names = symbolNames();
    ASSERT_GE(names.size(), 17);
    for (const auto& name : names) {
        const auto image = symbolImage(name, color, usualSize);
        ASSERT_FALSE(image.isNull()) << name.toStdString();
        EXPECT_EQ(image.size(), usualSize);
        EXPECT_GT(inkedPixels(image), 20) << name.toStdString();
        EXPECT_LT(inkedPixels(image), 32 * 32) << name.toStdString(); // a drawing, not a filled square
        bool hasInk = false;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const auto pixel = image.pixelColor(x, y);
                if (pixel.alpha() < 255)
                    continue;
                hasInk = true;
                ASSERT_EQ(pixel.name(), color.name()) << name.toStdString();
            }
        }
        EXPECT_TRUE(hasInk) << name.toStdString();
    }
}

TEST(Symbols, theTableIsSortedAndNamesNothingTwice) {
    const auto names = symbolNames();
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
    EXPECT_EQ(std::set<QString>(names.begin(), names.end()).size(), static_cast<std::size_t>(names.size()));
}

TEST(Symbols, aClearColourLeavesNoInk) {
    const auto image = symbolImage(QStringLiteral("checkmark"), QColor(255, 0, 0, 0), usualSize);
    ASSERT_FALSE(image.isNull());
    EXPECT_EQ(inkedPixels(image), 0);
}

TEST(Symbols, aNameThatTheTableLacksGivesNoImage) {
    for (const auto* name : {"", "no.such.symbol", "check-lg", "../checkmark", "checkmark ", "Checkmark", "%1"}) {
        EXPECT_TRUE(symbolFile(QString::fromUtf8(name)).isEmpty()) << name;
        EXPECT_TRUE(symbolImage(QString::fromUtf8(name), Qt::red, usualSize).isNull()) << name;
    }
}

TEST(Symbols, aSizeThatIsEmptyOrHugeGivesNoImage) {
    for (const auto& size : {QSize(), QSize(0, 16), QSize(16, -1), QSize(1'000'000, 1'000'000)})
        EXPECT_TRUE(symbolImage(QStringLiteral("checkmark"), Qt::red, size).isNull()) << size.width();
}

TEST(Symbols, thePagesAskByNameAndColour) {
    SymbolProvider provider;
    QSize size;
    const auto image = provider.requestImage(QStringLiteral("checkmark/#80ff0000"), &size, QSize(20, 20));
    EXPECT_EQ(size, QSize(20, 20));
    EXPECT_EQ(image, symbolImage(QStringLiteral("checkmark"), QColor(255, 0, 0, 128), QSize(20, 20)));
    // Without a size it is drawn on the grid of the drawings.
    EXPECT_EQ(provider.requestImage(QStringLiteral("checkmark/#ff0000"), nullptr, QSize()).size(), QSize(16, 16));
}

TEST(Symbols, aHeavierSymbolHasMoreInkInTheSameColour) {
    SymbolProvider provider;
    const QSize edge(64, 64);
    for (const auto& name : symbolNames()) {
        const auto inkOf = [&](const char* weight) {
            const auto image =
                provider.requestImage(name + QStringLiteral("/#123456") + QLatin1String(weight), nullptr, edge);
            EXPECT_EQ(image.size(), edge);
            long ink = 0;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) {
                    const auto pixel = image.pixelColor(x, y);
                    ink += pixel.alpha();
                    if (pixel.alpha() == 255) {
                        EXPECT_EQ(pixel.name(), QStringLiteral("#123456"));
                    }
                }
            }
            return ink;
        };
        const auto regular = inkOf("");
        const auto semibold = inkOf("/semibold");
        EXPECT_GT(semibold, regular) << name.toStdString();
        EXPECT_GT(inkOf("/bold"), semibold) << name.toStdString();
    }
}

TEST(Symbols, anIdThatIsNoneGivesNoImage) {
    SymbolProvider provider;
    for (const auto* id : {"", "/", "//", "checkmark", "checkmark/", "checkmark/no colour", "no.such/#ff0000",
                           "checkmark/#ff0000/", "a/b/c/d", "checkmark/#ff0000/light", "checkmark/#ff0000/bold/bold"}) {
        QSize size(1, 1);
        EXPECT_TRUE(provider.requestImage(QString::fromUtf8(id), &size, QSize(16, 16)).isNull()) << id;
        EXPECT_TRUE(size.isEmpty()) << id;
    }
}
