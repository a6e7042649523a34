#include "ui/LastPagesWindow.h"

#include "base/Fields.h"
#include "fakes/CoroutineTest.h"
#include "resolve/Scripts.h"

#include <QCoroSignal>
#include <QDateTime>
#include <QFile>
#include <QFileDevice>
#include <algorithm>

namespace zuvo::tests {

namespace {

ToldTools::Matcher runsScript(const std::optional<std::string>& script) {
    return [script](const ProcessRequest& request) {
        return script && !request.arguments.empty() && request.arguments.back() == *script;
    };
}

ToldTools::Matcher isTool(const std::string& name) {
    return [name](const ProcessRequest& request) { return request.program.ends_with(name); };
}

} // namespace

void ToldTools::release() {
    m_isHeld = false;
    Q_EMIT released();
}

QCoro::Task<ProcessOutcome> ToldTools::run(ProcessRequest request) {
    requests.push_back(request);
    if (m_isHeld)
        co_await qCoro(this, &ToldTools::released);
    const auto rule =
        std::find_if(m_rules.rbegin(), m_rules.rend(), [&request](const auto& entry) { return entry.first(request); });
    ProcessOutcome outcome;
    if (rule == m_rules.rend()) {
        outcome.launchFailure = "No such file or directory";
        co_return outcome;
    }
    outcome.launched = true;
    outcome.succeeded = true;
    outcome.standardOutput = rule->second;
    co_return outcome;
}

LastPagesWindow::LastPagesWindow() : exportFolder(world.disk().makeFolder("home/exports/Faro")) {
    world.platform.processes = tools;
    world.givenSignedInBefore();
}

void LastPagesWindow::launch() {
    world.launch();
    driver = std::make_unique<WindowDriver>(&world.content());
    ASSERT_TRUE(waitUntil([this] { return world.content().isSignedIn(); }));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("step0")));
}

void LastPagesWindow::givenFootage(const std::string& name, const std::string& seconds) {
    tools->print(isTool("ffprobe"), R"({"format": {"duration": ")" + seconds +
                                        R"("}, "streams": [{"codec_type": "audio", "codec_name": "pcm_s16le"}]})");
    std::vector<std::string> paths = {world.disk().write("footage/" + name, "footage")};
    runToEnd(pipeline().probeAllMedia(std::move(paths)));
}

void LastPagesWindow::givenVersion(int number, std::size_t moments, const QDateTime& written) {
    MiningResults story;
    story.segments.resize(moments);
    const auto path = world.disk().write("home/exports/Faro/mining_results_v" + std::to_string(number) + ".json",
                                         encodeRecord(story).dump());
    QFile file(QString::fromStdString(path));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(written, QFileDevice::FileModificationTime));
}

void LastPagesWindow::givenBuildPrints(const std::string& line) {
    pipeline().writeSegmentsJsonPublic(lighthouseStory().segments);
    tools->print(isTool("python3"), line + "\n");
}

void LastPagesWindow::givenAudit(const AuditReport& report) {
    const std::vector<std::string> media = {world.disk().write("footage/Cut.wav", "footage")};
    TranscriptResult transcript;
    transcript.segments = {{0.0, 10.0, "one two", "en"}};
    transcript.language = "en";
    pipeline().saveTranscriptCache(transcript, media);
    const auto lib = world.platform.environment.resolveScriptLib;
    tools->print(runsScript(timelineClipsScript(lib, "Cut")),
                 R"(SUCCESS:[{"sourceFile": ")" + media.front() +
                     R"(", "startFrame": 0, "endFrame": 24, "duration": 1.0}])" + "\n");
    tools->print(runsScript(timelineMediaScript(lib, "Cut")), media.front() + "\n");
    world.services.fail(standin::Service::messages, standin::Failure::reply(encodeRecord(report).dump()));
    flow().setSelectedMode(MiningMode::audit);
    runToEnd(pipeline().auditTimeline("Cut"));
    ASSERT_TRUE(pipeline().auditReport()) << pipeline().errorMessage().value_or("");
}

void LastPagesWindow::show(MineStep step, const QString& name) {
    flow().advanceTo(step);
    ASSERT_TRUE(driver->waitFor(name));
    constexpr std::chrono::milliseconds pageChange{450};
    runEventLoop(pageChange);
}

MiningResults LastPagesWindow::lighthouseStory() {
    MiningResults story;
    const std::vector<std::string> chapters = {"The Keeper",  "The Keeper",    "The Keeper",   "The Storm",
                                               "The Storm",   "What Stayed",   "What Stayed",  "What Stayed",
                                               "What Stayed", "The Light Now", "The Light Now"};
    for (std::size_t index = 0; index < chapters.size(); ++index) {
        StorySegment moment;
        moment.index = static_cast<std::int64_t>(index);
        moment.startTime = 100.0 * static_cast<double>(index);
        moment.endTime = moment.startTime + 26.5;
        moment.sourceClip = index % 2 == 0 ? "Faro_01.mov" : "Faro_02.mov";
        moment.transcript = "La luz";
        moment.translation = "The light";
        moment.chapter = chapters[index];
        story.segments.push_back(moment);
    }
    story.structure.acts = {{"Act 1: The Light Was For Others", {0, 1, 2}},
                            {"Act 2: One Black Thing", {3, 4, 5, 6, 7, 8}},
                            {"Act 3: Someone Comes From Far", {9, 10}}};
    story.subtitles.resize(68);
    story.estimatedDuration = 291.5;
    return story;
}

AuditReport LastPagesWindow::lighthouseAudit() {
    AuditReport report;
    report.coveragePercent = 37.4;
    report.usedSegments.resize(14);
    report.buriedGold = {
        {125.4, 151.2,
         "Mi abuelo encendía el faro todas las noches, con niebla o sin ella. Decía que la luz no era para nosotros, "
         "era para el que venía lejos.",
         "States the film's central image in his own words, before the storm. Clean on-mic delivery, steady level, and "
         "it gives the ending something to answer.",
         5},
        {2602.0, 2631.0, "Guardé la lámpara rota. No por nostalgia: por respeto.", "It answers the first line.", 4},
        {680.0, 706.0, "En casa nadie decía te quiero. Se decía: he dejado la luz encendida.", "The family.", 3}};
    report.redundancies = {{1275.0, 1301.0, 3308.0, 3327.0, "Waiting for the boat"}};
    report.alternates = {
        {2877.0, 2890.0, 3015.0, 3040.0, "Lo que pesa no es lo que perdimos. Es lo que nunca llegamos a decirnos.",
         "Same thought, said once and without the false start; the pause at the end can carry the cut."}};
    report.themeGaps = {"The grandfather as the first keeper", "What automation took from the village",
                        "The granddaughter and who climbs next"};
    report.confidenceScore = 72.0;
    report.summary =
        "The cut tells the storm well and lands its ending, but leaves out the grandfather almost entirely. "
        "Three unused moments explain why he still climbs the stairs; one line about waiting is said twice.";
    return report;
}

} // namespace zuvo::tests
