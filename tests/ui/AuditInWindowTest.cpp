#include "ui/FlowFixture.h"

#include <algorithm>
#include <nlohmann/json.hpp>

// An audit in the window from the setup to its page. Real Python runs the scripts, against the stand-in for Resolve's
// module.

using namespace zuvo;
using namespace zuvo::tests;
using testing::StartsWith;

namespace {

/// An environment variable of this process, and of those that it starts, for the length of a test.
class SetVariable {
public:
    SetVariable(const char* name, const std::string& value)
        : m_name(name), m_wasSet(qEnvironmentVariableIsSet(name)), m_before(qgetenv(name)) {
        qputenv(name, QByteArray::fromStdString(value));
    }
    ~SetVariable() {
        if (m_wasSet)
            qputenv(m_name, m_before);
        else
            qunsetenv(m_name);
    }
    SetVariable(const SetVariable&) = delete;
    SetVariable& operator=(const SetVariable&) = delete;

private:
    const char* m_name;
    bool m_wasSet;
    QByteArray m_before;
};

class AuditInWindow : public FlowFixture {
protected:
    AuditInWindow() { world.platform.environment.resolveScriptLib = ZUVO_TEST_FOLDER "/fakes/resolve"; }

    /// "Cut" uses 30 s of the first file, and one of the second.
    [[nodiscard]] static nlohmann::json resolveWithACut() {
        const auto first = sample(1).toLocalFile().toStdString();
        const auto second = sample(2).toLocalFile().toStdString();
        auto resolve = nlohmann::json::parse(R"({"project": "Harbour", "currentTimeline": "Cut",
            "mediaPool": {"clips": [{"Duration": "00:01:03:02"}, {"Duration": "00:01:05:07"}]},
            "timelines": [{"name": "Cut", "startTimecode": "00:00:00:00",
                           "tracks": {"audio": [[{"start": 0, "end": 720}, {"start": 720, "end": 744}]]}}]})");
        for (const auto& [place, path] : {std::pair(std::size_t{0}, first), std::pair(std::size_t{1}, second)}) {
            resolve["mediaPool"]["clips"][place]["File Path"] = path;
            resolve["timelines"][0]["tracks"]["audio"][0][place]["clip"] = path;
        }
        return resolve;
    }
    /// The timelines that were built, as Resolve has them now.
    [[nodiscard]] std::ptrdiff_t buildCount() const {
        const auto timelines = nlohmann::json::parse(world.disk().read("resolve.json")).at("timelines");
        return std::count_if(timelines.begin(), timelines.end(), [](const auto& timeline) {
            return timeline.at("name").template get<std::string>().starts_with("Zuvo Build — ");
        });
    }

    [[nodiscard]] QString textOf(const QString& name) {
        const auto* item = driver->find(name);
        return item == nullptr ? QString() : item->property("text").toString();
    }
    void waitUntilOpen(const QString& card) {
        EXPECT_TRUE(waitUntil([this, &card] {
            const auto* item = driver->find(card);
            return item != nullptr && item->property("openness").toDouble() == 1.0;
        }));
    }

    void mineByTheMouse() {
        driver->click(QStringLiteral("resolveTab"));
        ASSERT_TRUE(driver->waitFor(QStringLiteral("timelinePicker")));
        driver->click(QStringLiteral("timelinePicker"));
        ASSERT_TRUE(driver->waitFor(QStringLiteral("pickerRow1")));
        driver->click(QStringLiteral("pickerRow1"));
        EXPECT_EQ(flow().selectedTimeline(), "Cut");
        ASSERT_TRUE(driver->waitFor(QStringLiteral("actionButton")));
        driver->click(QStringLiteral("actionButton"));
        thenStepIs(MineStep::style);
        scrollTo(QStringLiteral("actionButton"));
        driver->click(QStringLiteral("actionButton"));
        thenStepIs(MineStep::review);
    }

    /// The report of the stand-in's model is about lines: those are used that lie wholly within the cut's 30 s.
    void thenThePageTellsOfTheCut() {
        ASSERT_TRUE(driver->waitFor(QStringLiteral("coverageCard")));
        const auto& lines = pipeline().lastTranscript()->segments;
        const auto usedLines =
            std::count_if(lines.begin(), lines.end(), [](const auto& line) { return line.end <= 30.0; });
        const double coverage = 31.0 / lines.back().end * 100.0;
        const auto confidence =
            static_cast<int>(100.0 * static_cast<double>(usedLines) / static_cast<double>(lines.size()));
        EXPECT_GT(usedLines, 0);
        for (const auto& text :
             {QString::asprintf("%.1f%%", coverage), QString::asprintf("%.1f%%", 100.0 - coverage),
              QString::asprintf("%d clips", static_cast<int>(usedLines)), QString::asprintf("%d/100", confidence),
              QStringLiteral("Major gaps — review buried gold carefully"), QStringLiteral("3 moments")})
            EXPECT_TRUE(driver->showsText(text)) << text.toStdString();
        for (const auto* name : {"goldCard0", "goldCard1", "goldCard2", "themeGapsSection", "startOverButton"})
            EXPECT_TRUE(driver->shows(QString::fromUtf8(name))) << name;
        EXPECT_FALSE(driver->shows(QStringLiteral("redundanciesSection")));
        EXPECT_FALSE(driver->shows(QStringLiteral("addMomentsButton")));
    }

    SetVariable m_resolveWorld{"FAKE_RESOLVE_WORLD", world.disk().write("resolve.json", resolveWithACut().dump())};
    SetVariable m_noCompiledModules{"PYTHONDONTWRITEBYTECODE", "1"};
    SetVariable m_home{"HOME", world.home()}; // the scripts look for what was probed there
};

} // namespace

TEST_F(AuditInWindow, fromTheSetupToItsPageByTheMouseAlone) {
    launch();
    mineByTheMouse();
    driver->click(QStringLiteral("step0"));
    thenStepIs(MineStep::setup);
    driver->click(QStringLiteral("mode3"));
    EXPECT_EQ(textOf(QStringLiteral("actionButton")), QStringLiteral("Start Audit"));
    driver->click(QStringLiteral("actionButton"));
    thenStepIs(MineStep::review);
    thenThePageTellsOfTheCut();

    scrollTo(QStringLiteral("goldCard0"));
    driver->click(QStringLiteral("goldCard0"));
    waitUntilOpen(QStringLiteral("goldCard0"));
    scrollTo(QStringLiteral("goldCard0Select"));
    driver->click(QStringLiteral("goldCard0Select"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("addMomentsButton")));
    scrollTo(QStringLiteral("addMomentsButton"));
    EXPECT_EQ(textOf(QStringLiteral("addMomentsButton")), QStringLiteral("Add 1 moments to timeline"));
    const auto before = buildCount();
    driver->click(QStringLiteral("addMomentsButton"));
    EXPECT_TRUE(waitUntil([this, before] { return buildCount() == before + 1; }));
    ASSERT_TRUE(waitUntil([this] { return pipeline().buildResult().has_value(); }));
    EXPECT_THAT(*pipeline().buildResult(), StartsWith("✓ "));
    EXPECT_EQ(flow().currentStep(), MineStep::review);

    scrollTo(QStringLiteral("startOverButton"));
    driver->click(QStringLiteral("startOverButton"));
    thenStepIs(MineStep::setup);
    driver->click(QStringLiteral("actionButton"));
    thenStepIs(MineStep::review);
    thenThePageTellsOfTheCut();
}

TEST_F(AuditInWindow, fromTheSetupToItsPageByTheKeyboardAlone) {
    launch();
    pressByKeyboard(QStringLiteral("resolveTab"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("timelinePicker")));
    tabTo(QStringLiteral("timelinePicker"));
    driver->press(Qt::Key_Down);
    EXPECT_EQ(flow().selectedTimeline(), "Cut");
    ASSERT_TRUE(driver->waitFor(QStringLiteral("actionButton")));
    pressByKeyboard(QStringLiteral("actionButton"));
    thenStepIs(MineStep::style);
    pressByKeyboard(QStringLiteral("actionButton"));
    thenStepIs(MineStep::review);

    pressByKeyboard(QStringLiteral("step0"));
    thenStepIs(MineStep::setup);
    tabTo(QStringLiteral("mode0"));
    driver->press(Qt::Key_Left);
    EXPECT_EQ(flow().selectedMode(), MiningMode::audit);
    pressByKeyboard(QStringLiteral("actionButton"));
    thenStepIs(MineStep::review);
    thenThePageTellsOfTheCut();

    pressByKeyboard(QStringLiteral("goldCard2"));
    waitUntilOpen(QStringLiteral("goldCard2"));
    tabTo(QStringLiteral("goldCard2Select"));
    driver->press(Qt::Key_Space);
    ASSERT_TRUE(driver->waitFor(QStringLiteral("addMomentsButton")));
    tabTo(QStringLiteral("addMomentsButton"));
    const auto before = buildCount();
    driver->press(Qt::Key_Return);
    EXPECT_TRUE(waitUntil([this, before] { return buildCount() == before + 1; }));
    ASSERT_TRUE(waitUntil([this] { return pipeline().buildResult().has_value(); }));
    tabTo(QStringLiteral("startOverButton"));
    driver->press(Qt::Key_Space);
    thenStepIs(MineStep::setup);
}

TEST_F(AuditInWindow, withoutAMineBeforehandItSaysWhatToDoFirst) {
    launch();
    driver->click(QStringLiteral("resolveTab"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("timelinePicker")));
    tabTo(QStringLiteral("timelinePicker"));
    driver->press(Qt::Key_Down);
    ASSERT_TRUE(driver->waitFor(QStringLiteral("actionButton")));
    driver->click(QStringLiteral("mode3"));
    driver->click(QStringLiteral("actionButton"));
    EXPECT_TRUE(driver->waitForText(
        QStringLiteral("No cached transcripts found. Run Full Mine or Story Mine first to generate transcripts.")));
    EXPECT_EQ(flow().currentStep(), MineStep::processing);
    EXPECT_FALSE(pipeline().auditReport());
}
