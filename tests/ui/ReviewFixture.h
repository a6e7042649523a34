#pragma once

#include "fakes/CoroutineTest.h"
#include "fakes/FakeSound.h"
#include "ui/MineViewModel.h"
#include "ui/ReviewPageModel.h"
#include "ui/UiWorld.h"
#include "ui/WindowDriver.h"

#include <QTest>
#include <gmock/gmock.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace zuvo::tests {

/// The review page in the real window, with a story of a lighthouse and players that make no sound.
class ReviewFixture : public testing::Test {
protected:
    void SetUp() override {
        world.givenSignedInBefore();
        world.launch();
        driver = std::make_unique<WindowDriver>(&world.content());
        ASSERT_TRUE(waitUntil([this] { return world.content().isSignedIn(); }));
        ASSERT_TRUE(waitUntil([this] { return world.page<MineViewModel>() != nullptr; }));
        flow = world.page<MineViewModel>();
        givenFootage();
    }

    /// Three sources of 2000 s, and words for the second moment.
    void givenFootage() {
        const std::string cache = "home/Library/Caches/ZuvoManager/";
        world.disk().write(cache + "probe_results.json", R"({"faro_01.wav":{"duration":2000},
            "faro_02.wav":{"duration":2000,"startTimecodeSeconds":3000}})");
        world.disk().write(cache + "word_timestamps.json", R"([{"segmentIndex":1,"words":[
            {"word":"Cada","start":0,"end":1},{"word":"libro","start":9,"end":10},{"word":"de","start":10,"end":10.5},
            {"word":"guardia.","start":10.5,"end":12},{"word":"Cada","start":13,"end":14.5},
            {"word":"página","start":15,"end":16},{"word":"empezaba","start":17,"end":18},
            {"word":"igual:","start":19,"end":20}]}])");
        sound.givenFile("/m/faro_01.wav", 2000);
        sound.givenFile("/m/faro_02.wav", 2000);
    }

    [[nodiscard]] static std::vector<StorySegment> story() {
        const auto moment = [](std::int64_t id, double start, double end, const char* text, const char* english,
                               const char* chapter) {
            return StorySegment{id, start, end, "faro_01.wav", text, english, chapter};
        };
        return {
            moment(0, 125, 150.9,
                   "Mi abuelo encendía el faro todas las noches, con niebla o sin ella. Decía que la luz no era para "
                   "nosotros, era para el que venía lejos.",
                   "My grandfather lit the lighthouse every night.", "The Keeper"),
            moment(1, 408, 432.5,
                   "Yo aprendí a leer con el libro de guardia. Cada página empezaba igual: viento, mar, visibilidad.",
                   "I learned to read from the logbook. Every page began the same way: wind, sea, visibility.",
                   "The Keeper"),
            moment(2, 680, 706, "En casa nadie decía te quiero. Se decía: he dejado la luz encendida.",
                   "At home nobody said I love you.", "The Keeper"),
            moment(3, 1142, 1171.5,
                   "Aquella noche no había cielo ni había mar. Había una sola cosa negra que golpeaba la puerta.",
                   "That night there was no sky.", "The Storm"),
            moment(4, 1275, 1300.5, "La mar te enseña a esperar, y también te enseña que esperar no siempre sirve.",
                   "The sea teaches you to wait.", "The Storm"),
            moment(5, 1400, 1427.5, "Subí los ciento doce escalones a oscuras. Los conté como si rezara.",
                   "I climbed the steps in the dark.", "The Storm"),
            moment(6, 1500, 1526, "Cuando volvió el barco, mi padre no corrió. Se quedó sentado.", "", "What Stayed"),
            moment(7, 1600, 1628, "Guardé la lámpara rota. No por nostalgia: por si acaso.", "", "What Stayed"),
            moment(8, 2100, 2124, "Lo que pesa no es lo que perdimos. Es lo que nos queda por decir.", "",
                   "What Stayed"),
            moment(9, 2200, 2227, "Ahora el faro se enciende solo, desde una oficina en la capital.", "",
                   "The Light Now"),
            moment(10, 2300, 2326, "Y aun así subo. Todas las noches. Alguien tiene que mirar.", "", "The Light Now"),
        };
    }
    [[nodiscard]] static std::vector<TranscriptSegment> transcript() {
        const char* const texts[] = {
            "Desde niño supe que la mar no es de nadie.",
            "Mi madre cerraba las ventanas que daban al mar.",
            "Aquella noche no había cielo ni había mar.",
            "La mar te enseña a esperar, y también te enseña que esperar no siempre sirve.",
            "Había una sola cosa negra que golpeaba la puerta.",
            "Cuando amanece, la mar finge que no ha pasado nada.",
            "En el pueblo todos tienen un nombre y un mar distinto.",
            "Marcharse era fácil. Lo difícil era volver y que te miraran igual.",
            "Subí los ciento doce escalones a oscuras.",
            "Yo no le tengo miedo al mar. Le tengo miedo al silencio de después.",
        };
        std::vector<TranscriptSegment> lines;
        for (const auto* text : texts) {
            const auto start = 612.0 + 200.0 * static_cast<double>(lines.size());
            lines.push_back({start, start + 6.0, text, "es"});
        }
        return lines;
    }

    /// The page on screen with the story, and with the transcript of the run.
    void openReview() {
        MiningResults results;
        results.segments = story();
        flow->pipeline()->setResults(results);
        flow->pipeline()->setLastMediaPaths(std::vector<std::string>{"/m/faro_01.wav", "/m/faro_02.wav"});
        flow->advanceTo(MineStep::review);
        if (!driver->waitFor(QStringLiteral("segmentCard0")))
            throw std::runtime_error("The story was not shown");
        page = driver->window().findChild<ReviewPageModel*>();
        if (page == nullptr)
            throw std::runtime_error("The page has no model");
        page->setSound(sound.players(), sound.timers());
        settle();
    }
    void givenTranscript() {
        page->show(story(), {"/m/faro_01.wav", "/m/faro_02.wav"}, transcript());
        settle();
    }

    /// Lets changes of page and of the list come to their end.
    static void settle() { runEventLoop(std::chrono::milliseconds(450)); }

    [[nodiscard]] std::vector<std::int64_t> order() const {
        std::vector<std::int64_t> ids;
        for (const auto& one : page->segments())
            ids.push_back(one.id());
        return ids;
    }
    [[nodiscard]] QPoint middleOf(const QString& name) {
        const auto* item = driver->find(name);
        if (item == nullptr) {
            ADD_FAILURE() << "There is no " << name.toStdString();
            return {};
        }
        return item->mapToScene({item->width() / 2, item->height() / 2}).toPoint();
    }
    void moveTo(QPoint place) {
        QTest::mouseMove(&driver->window(), place);
        runEventLoop(std::chrono::milliseconds(260));
    }
    void pressAt(QPoint place) { QTest::mousePress(&driver->window(), Qt::LeftButton, Qt::NoModifier, place); }
    void releaseAt(QPoint place) { QTest::mouseRelease(&driver->window(), Qt::LeftButton, Qt::NoModifier, place); }

    UiWorld world;
    FakeSound sound;
    std::unique_ptr<WindowDriver> driver;
    MineViewModel* flow = nullptr;
    ReviewPageModel* page = nullptr;
};

} // namespace zuvo::tests
