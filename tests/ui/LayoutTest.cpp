#include "ui/PluginPageFixture.h"
#include "ui/ShellFixture.h"
#include "ui/TextLayout.h"

#include <cmath>

// No text is cut off or lies on another, whatever the window's size and however long the texts of others are. These
// tests run at several scales, and with one unusually wide font, in ctests of their own.

using namespace zuvo;
using namespace zuvo::tests;

namespace {

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
