#include "ui/TextLayout.h"

#include <QQuickItem>
#include <array>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace zuvo::tests {

namespace {

const std::array windowSizes = {QSize(900, 600), QSize(1100, 750), QSize(2560, 1440)};

bool isText(const QQuickItem* item) {
    return item->inherits("QQuickText") && !item->property("text").toString().isEmpty();
}

/// Where the letters are, in the window.
QRectF placeOfLetters(const QQuickItem* text) {
    const double width = text->property("contentWidth").toDouble();
    const double height = text->property("contentHeight").toDouble();
    const auto shift = [](double room, double needed, bool isMiddle, bool isFarEnd) {
        return isMiddle ? (room - needed) / 2 : isFarEnd ? room - needed : 0.0;
    };
    const auto across = text->property("effectiveHorizontalAlignment").toInt();
    const auto down = text->property("verticalAlignment").toInt();
    const double x = shift(text->width(), width, (across & Qt::AlignHCenter) != 0, (across & Qt::AlignRight) != 0);
    const double y = shift(text->height(), height, (down & Qt::AlignVCenter) != 0, (down & Qt::AlignBottom) != 0);
    return text->mapRectToScene(QRectF(x, y, width, height));
}

std::string named(const QQuickItem* text) {
    return "\"" + text->property("text").toString().left(40).toStdString() + "\"";
}

/// The control or card around it that it must not stick out of.
const QQuickItem* frameOf(const QQuickItem* text) {
    for (const auto* around = text->parentItem(); around != nullptr; around = around->parentItem()) {
        const auto kind = QString::fromLatin1(around->metaObject()->className());
        if (around->inherits("QQuickAbstractButton") || kind.startsWith(QLatin1String("GlassCard")) ||
            kind.startsWith(QLatin1String("CardLayout")))
            return around;
    }
    return nullptr;
}

bool isInsideFlickable(const QQuickItem* item) {
    for (const auto* around = item->parentItem(); around != nullptr; around = around->parentItem()) {
        if (around->inherits("QQuickFlickable"))
            return true;
    }
    return false;
}

} // namespace

void expectAllTextsToBeRead(WindowDriver& driver) {
    constexpr double roundings = 1.0;
    std::vector<std::pair<const QQuickItem*, QRectF>> texts;
    for (const auto* item : driver.shownItems()) {
        if (isText(item))
            texts.emplace_back(item, placeOfLetters(item));
    }
    ASSERT_FALSE(texts.empty());
    const QSizeF window = driver.window().size();
    for (const auto& [text, place] : texts) {
        EXPECT_LE(text->property("contentWidth").toDouble(), text->width() + roundings) << named(text);
        EXPECT_GE(place.left(), -roundings) << named(text);
        EXPECT_LE(place.right(), window.width() + roundings) << named(text);
        if (!isInsideFlickable(text)) {
            EXPECT_GE(place.top(), -roundings) << named(text);
            EXPECT_LE(place.bottom(), window.height() + roundings) << named(text);
        }
        if (const auto* frame = frameOf(text)) {
            const auto around = frame->mapRectToScene(QRectF(0, 0, frame->width(), frame->height()));
            EXPECT_TRUE(around.adjusted(-roundings, -roundings, roundings, roundings).contains(place)) << named(text);
        }
    }
    for (std::size_t i = 0; i < texts.size(); ++i) {
        for (std::size_t j = i + 1; j < texts.size(); ++j) {
            const auto common = texts[i].second.intersected(texts[j].second);
            EXPECT_FALSE(common.width() > roundings && common.height() > roundings)
                << named(texts[i].first) << " lies on " << named(texts[j].first);
        }
    }
}

void expectAllTextsToBeReadAtAllSizes(WindowDriver& driver) {
    for (const auto size : windowSizes) {
        SCOPED_TRACE(testing::Message() << size.width() << " x " << size.height());
        driver.resize(size.width(), size.height());
        ASSERT_EQ(driver.window().size(), size);
        expectAllTextsToBeRead(driver);
    }
}

} // namespace zuvo::tests
