#include "ui/PluginPageFixture.h"
#include "ui/ShellFixture.h"

#include <cmath>

// No text is cut off or lies on another, whatever the window's size and however long the texts of others are. These
// tests run at several scales, and with one unusually wide font, in ctests of their own.

using namespace zuvo;
using namespace zuvo::tests;

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

/// In each of the sizes.
void expectAllTextsToBeReadAtAllSizes(WindowDriver& driver) {
    for (const auto size : windowSizes) {
        SCOPED_TRACE(testing::Message() << size.width() << " x " << size.height());
        driver.resize(size.width(), size.height());
        ASSERT_EQ(driver.window().size(), size);
        expectAllTextsToBeRead(driver);
    }
}

class LayoutTest : public ShellFixture {};
class PluginPageLayoutTest : public PluginPageFixture {};

const std::string longNotes =
    "Die Übergabe von Kapiteln und Markierungen an den Schnittplatz ist erheblich beschleunigt worden.\n"
    "Untertiteltafeln behalten nach einer Auslassungslöschung zuverlässig ihre ursprüngliche Stelle.\n"
    "Behebt eine Bedienfeldanzeige, die nach einem Projektwechsel gelegentlich leer geblieben ist.\n\n"
    "Donaudampfschifffahrtselektrizitätenhauptbetriebswerkbauunterbeamtengesellschaftsgeschäftsstellenleitung.";

} // namespace

TEST_F(LayoutTest, theSignInPage) {
    launchSignedOut();
    expectAllTextsToBeReadAtAllSizes(*driver);
}

TEST_F(LayoutTest, theTokenFieldWithALongFailure) {
    launchSignedOut();
    world.services.fail(standin::Service::me,
                        standin::Failure::status(500, "Der Dienst wird gerade instandgesetzt und ist voraussichtlich "
                                                      "in den frühen Morgenstunden wieder für Sie erreichbar."));
    driver->click(QStringLiteral("tokenChoiceButton"));
    ASSERT_TRUE(waitForFocus(QStringLiteral("tokenField")));
    driver->type(QStringLiteral("zuvo_a"));
    driver->press(Qt::Key_Return);
    ASSERT_TRUE(driver->waitFor(QStringLiteral("errorView")));
    expectAllTextsToBeReadAtAllSizes(*driver);
}

TEST_F(LayoutTest, theWaiting) {
    launchSignedOut();
    driver->click(QStringLiteral("browserButton"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("cancelWaitingButton")));
    expectAllTextsToBeReadAtAllSizes(*driver);
}

TEST_F(LayoutTest, theStepsAboveTheFlow) {
    launchSignedIn();
    for (const auto step : {MineStep::review, MineStep::done}) {
        world.page<MineViewModel>()->advanceTo(step);
        runEventLoop(std::chrono::milliseconds(450)); // the page before has gone
        expectAllTextsToBeReadAtAllSizes(*driver);
    }
}

TEST_F(LayoutTest, theAccount) {
    launchSignedIn();
    driver->click(QStringLiteral("tab0"));
    ASSERT_TRUE(driver->waitForText(QStringLiteral("Marta Carballo")));
    expectAllTextsToBeReadAtAllSizes(*driver);
}

TEST_F(LayoutTest, theAccountOfSomebodyWithLongNames) {
    world.services.setAccount(
        {"user-1", "Maximiliane Freifrau von Schwarzenberg-Hohenfels zu Oberwolkersdorf an der Ybbs",
         "maximiliane.schwarzenberg-hohenfels.dokumentarfilmproduktion@beispielgesellschaft.example", 999999999999,
         "Arbeitsgemeinschaft Dokumentarfilm Jahreslizenz fuer bis zu 40 Personen"});
    launchSignedIn();
    driver->click(QStringLiteral("tab0"));
    ASSERT_TRUE(driver->waitForText(QStringLiteral("999999999999")));
    expectAllTextsToBeReadAtAllSizes(*driver);
}

TEST_F(LayoutTest, theAccountOfSomebodyWithoutAName) {
    world.services.setAccount({"user-1", "", "", 0, ""});
    launchSignedIn();
    driver->click(QStringLiteral("tab0"));
    ASSERT_TRUE(driver->waitForText(QStringLiteral("User")));
    expectAllTextsToBeReadAtAllSizes(*driver);
}

TEST_F(LayoutTest, anUpdateWithLongNotes) {
    world.services.setVersion({"20240917.1234567890.99-beta+mit.einem.langen.anhang.an.der.nummer.dieser.ausgabe",
                               "http://127.0.0.1/a.zip", longNotes});
    launchSignedIn();
    driver->click(QStringLiteral("tab2"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("notesCard")));
    expectAllTextsToBeReadAtAllSizes(*driver);
}

TEST_F(LayoutTest, theUpdatesThatCouldNotBeLookedFor) {
    world.services.fail(standin::Service::version, standin::Failure::status(500, longNotes));
    launchSignedIn();
    driver->click(QStringLiteral("tab2"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("errorView")));
    expectAllTextsToBeReadAtAllSizes(*driver);
}

TEST_F(PluginPageLayoutTest, thePluginThatIsNotInstalled) {
    show();
    expectAllTextsToBeReadAtAllSizes(*driver);
}

TEST_F(PluginPageLayoutTest, thePluginWithALongVersion) {
    givenInstalled("20240917.1234567890.99-beta+mit.einem.langen.anhang.an.der.nummer.dieser.ausgabe");
    show();
    expectAllTextsToBeReadAtAllSizes(*driver);
    // The narrowest that the shell would leave to it.
    driver->resize(679, 600);
    expectAllTextsToBeRead(*driver);
}
