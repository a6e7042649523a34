#include "cli/Arguments.h"

#include <QDir>
#include <algorithm>
#include <gmock/gmock.h>

namespace zuvo {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Optional;
using testing::Pair;

Command parse(const std::vector<std::string>& words) {
    QStringList list;
    for (const auto& word : words)
        list.append(QString::fromStdString(word));
    return parseArguments(list);
}

template <class Expected>
Expected parseAs(const std::vector<std::string>& words) {
    auto command = parse(words);
    if (const auto* wrong = std::get_if<WrongUsage>(&command))
        ADD_FAILURE() << wrong->message;
    const auto* expected = std::get_if<Expected>(&command);
    EXPECT_NE(expected, nullptr);
    return expected == nullptr ? Expected() : *expected;
}

std::string complaint(const std::vector<std::string>& words) {
    auto command = parse(words);
    const auto* wrong = std::get_if<WrongUsage>(&command);
    EXPECT_NE(wrong, nullptr) << "these words make a command: " << testing::PrintToString(words);
    return wrong == nullptr ? std::string() : wrong->message;
}

StyleOptions style(std::vector<std::string> words) {
    words.insert(words.begin(), {"mine", "/a.wav"});
    return parseAs<MineFilesCommand>(words).style;
}

TEST(Arguments, filesAreMadeAbsoluteAgainstTheWorkingFolder) {
    const auto here = QDir::currentPath().toStdString();
    EXPECT_THAT(parseAs<MineFilesCommand>({"mine", "a.wav", "../b.wav", "/c/./d.wav", "./-e.wav"}).files,
                ElementsAre(here + "/a.wav",
                            QDir::cleanPath(QDir::currentPath() + QStringLiteral("/../b.wav")).toStdString(),
                            "/c/d.wav", here + "/-e.wav"));
}

TEST(Arguments, filesKeepTheirOrderAndRepeats) {
    EXPECT_THAT(parseAs<MineFilesCommand>({"mine", "/b", "/a", "/b"}).files, ElementsAre("/b", "/a", "/b"));
}

TEST(Arguments, behindTwoDashesEverythingIsAFile) {
    const auto here = QDir::currentPath().toStdString();
    EXPECT_THAT(parseAs<MineFilesCommand>({"mine", "--json", "--", "-a.wav", "--help", "--minutes"}).files,
                ElementsAre(here + "/-a.wav", here + "/--help", here + "/--minutes"));
}

TEST(Arguments, fileNamesKeepBlanksQuotesAndJapanese) {
    EXPECT_THAT(parseAs<MineFilesCommand>({"mine", "/ a \"b\" & 'c' é 東京.wav"}).files,
                ElementsAre("/ a \"b\" & 'c' é 東京.wav"));
}

TEST(Arguments, whatIsNotGivenStaysEmpty) {
    const auto none = style({});
    EXPECT_EQ(none.mode, std::nullopt);
    EXPECT_EQ(none.minutes, std::nullopt);
    EXPECT_EQ(none.language, std::nullopt);
    EXPECT_EQ(none.presetId, std::nullopt);
    EXPECT_TRUE(none.sliders.empty());
    EXPECT_FALSE(none.isMagicMode);
    EXPECT_EQ(none.notes, "");
    EXPECT_FALSE(parseAs<MineFilesCommand>({"mine", "/a"}).json);
}

TEST(Arguments, everyStyleOptionIsTakenWithABlankOrAnEqualsSign) {
    for (const auto& given : {style({"--mode", "story-mine", "--minutes", "2.5", "--language", "ja", "--preset",
                                     "essay", "--slider", "pace=0.25", "--magic", "--notes", "Be brief."}),
                              style({"--mode=story-mine", "--minutes=2.5", "--language=ja", "--preset=essay",
                                     "--slider=pace=0.25", "--magic", "--notes=Be brief."})}) {
        EXPECT_THAT(given.mode, Optional(MiningMode::storyMine));
        EXPECT_THAT(given.minutes, Optional(2.5));
        EXPECT_THAT(given.language, Optional(std::string("ja")));
        EXPECT_THAT(given.presetId, Optional(std::string("essay")));
        EXPECT_THAT(given.sliders, ElementsAre(Pair("pace", 0.25)));
        EXPECT_TRUE(given.isMagicMode);
        EXPECT_EQ(given.notes, "Be brief.");
    }
}

TEST(Arguments, aTimelineOrAProjectTakesTheNameAsItStands) {
    const auto timeline = parseAs<MineTimelineCommand>({"mine", "--timeline", " Rough \"cut\" ", "--json"});
    EXPECT_EQ(timeline.timeline, " Rough \"cut\" ");
    EXPECT_TRUE(timeline.json);
    const auto reload = parseAs<ReloadCommand>({"mine", "--reload", "Dropped Files (2)", "--minutes", "3"});
    EXPECT_EQ(reload.project, "Dropped Files (2)");
    EXPECT_THAT(reload.style.minutes, Optional(3.0));
}

TEST(Arguments, projectsAreListedOrOneIsDeleted) {
    EXPECT_FALSE(parseAs<ProjectsCommand>({"projects"}).json);
    EXPECT_TRUE(parseAs<ProjectsCommand>({"projects", "--json"}).json);
    EXPECT_EQ(parseAs<DeleteProjectCommand>({"projects", "delete", "My film"}).project, "My film");
    EXPECT_EQ(parseAs<DeleteProjectCommand>({"projects", "delete", "--", "--odd"}).project, "--odd");
}

TEST(Arguments, anAuditTakesATimelineAndCanMineItFirst) {
    const auto audit = parseAs<AuditCommand>({"audit", "--timeline", "My cut"});
    EXPECT_EQ(audit.timeline, "My cut");
    EXPECT_FALSE(audit.minesFirst);
    EXPECT_FALSE(audit.json);
    EXPECT_TRUE(parseAs<AuditCommand>({"audit", "--mine-first", "--timeline=a"}).minesFirst);
    EXPECT_TRUE(parseAs<AuditCommand>({"audit", "--timeline", "a", "--json"}).json);
}

TEST(Arguments, anExportTakesAFormatAProjectAndARate) {
    const auto edl = parseAs<ExportCommand>({"export", "edl", "--project", "My film"});
    EXPECT_EQ(edl.format, ExportFormat::edl);
    EXPECT_EQ(edl.project, "My film");
    EXPECT_EQ(edl.framesPerSecond, 24.0);
    EXPECT_EQ(parseAs<ExportCommand>({"export", "--project=a", "fcpxml", "--fps", "23.976"}).framesPerSecond, 23.976);
    EXPECT_EQ(parseAs<ExportCommand>({"export", "fcpxml", "--project", "a"}).format, ExportFormat::fcpxml);
    EXPECT_EQ(parseAs<ExportCommand>({"export", "premiere", "--project", "a"}).format, ExportFormat::premiere);
}

TEST(Arguments, buildsAndTimelinesTakeTheJsonFormAlone) {
    EXPECT_FALSE(parseAs<BuildCommand>({"build"}).json);
    EXPECT_TRUE(parseAs<BuildCommand>({"build", "--json"}).json);
    EXPECT_FALSE(parseAs<TimelinesCommand>({"timelines"}).json);
    EXPECT_TRUE(parseAs<TimelinesCommand>({"timelines", "--json"}).json);
}

TEST(Arguments, simpleCommandsStandAlone) {
    parseAs<ClearCachesCommand>({"clear-caches"});
    parseAs<KeysCommand>({"keys"});
    parseAs<VersionCommand>({"--version"});
}

TEST(Arguments, helpIsGivenWhereverItIsAskedFor) {
    for (const auto& words : {std::vector<std::string>{"help"},
                              {"--help"},
                              {"-h"},
                              {"mine", "--help"},
                              {"mine", "--minutes", "--help"},
                              {"projects", "-h"}})
        EXPECT_THAT(parseAs<HelpCommand>(words).text, HasSubstr("zuvo mine FILE..."));
}

TEST(Arguments, wrongUsageSaysWhatToWrite) {
    struct Case {
        std::vector<std::string> words;
        std::string message;
    };
    const std::vector<Case> cases = {
        {{}, "no command given"},
        {{"dig"}, "there is no command \"dig\""},
        {{"Mine", "/a"}, "there is no command \"Mine\""},
        {{"mine"}, "zuvo mine takes media files, --timeline NAME or --reload NAME"},
        {{"mine", "--magic"}, "zuvo mine takes media files, --timeline NAME or --reload NAME"},
        {{"mine", "/a", "--timeline", "b"}, "zuvo mine takes either media files, or --timeline NAME, or --reload NAME"},
        {{"mine", "--reload", "a", "--timeline", "b"},
         "zuvo mine takes either media files, or --timeline NAME, or --reload NAME"},
        {{"mine", "/a", "--mode", "audit"}, "--mode takes full-mine, story-mine or structure, not \"audit\""},
        {{"mine", "/a", "--mode", "Full Mine"}, "--mode takes full-mine, story-mine or structure, not \"Full Mine\""},
        {{"mine", "/a", "--minutes", "five"}, "--minutes takes a number above 0, such as 5 or 2.5, not \"five\""},
        {{"mine", "/a", "--minutes", "0"}, "--minutes takes a number above 0, such as 5 or 2.5, not \"0\""},
        {{"mine", "/a", "--minutes=-3"}, "--minutes takes a number above 0, such as 5 or 2.5, not \"-3\""},
        {{"mine", "/a", "--minutes", "2,5"}, "--minutes takes a number above 0, such as 5 or 2.5, not \"2,5\""},
        {{"mine", "/a", "--minutes", "nan"}, "--minutes takes a number above 0, such as 5 or 2.5, not \"nan\""},
        {{"mine", "/a", "--minutes", "inf"}, "--minutes takes a number above 0, such as 5 or 2.5, not \"inf\""},
        {{"mine", "/a", "--language", "English"},
         "--language takes auto or a language code such as en, es or ja, not \"English\""},
        {{"mine", "/a", "--language", ""}, "--language takes auto or a language code such as en, es or ja, not \"\""},
        {{"mine", "/a", "--preset", "noir"},
         "--preset takes one of cinema-verite, corporate, roamwell, campfire, sizzle, essay, outdoor, portrait, "
         "not \"noir\""},
        {{"mine", "/a", "--slider", "speed=0.5"},
         "--slider takes NAME=VALUE with a name of pace, structure, emotion, length, boldness or silence and a value "
         "from 0 to 1, not \"speed=0.5\""},
        {{"projects", "remove", "a"}, "write \"zuvo projects\" or \"zuvo projects delete NAME\""},
        {{"projects", "delete"}, "write \"zuvo projects\" or \"zuvo projects delete NAME\""},
        {{"audit"}, "write \"zuvo audit --timeline NAME\", with --mine-first to mine that timeline beforehand"},
        {{"audit", "Cut"}, "write \"zuvo audit --timeline NAME\", with --mine-first to mine that timeline beforehand"},
        {{"export", "edl"}, "write \"zuvo export edl --project NAME\", with fcpxml or premiere in place of edl"},
        {{"export", "aaf", "--project", "a"},
         "write \"zuvo export edl --project NAME\", with fcpxml or premiere in place of edl"},
        {{"export", "edl", "fcpxml", "--project", "a"},
         "write \"zuvo export edl --project NAME\", with fcpxml or premiere in place of edl"},
        {{"export", "edl", "--project", "a", "--fps", "0"},
         "--fps takes a frame rate from 1 to 1000, such as 25 or 23.976, not \"0\""},
        {{"export", "edl", "--project", "a", "--fps", "nan"},
         "--fps takes a frame rate from 1 to 1000, such as 25 or 23.976, not \"nan\""},
        {{"build", "Cut"}, "zuvo build takes nothing behind it but --json"},
        {{"timelines", "Cut"}, "zuvo timelines takes nothing behind it but --json"},
        {{"clear-caches", "all"}, "zuvo clear-caches takes nothing behind it"},
        {{"keys", "openai"}, "zuvo keys takes nothing behind it"},
        {{"--version", "2"}, "zuvo --version takes nothing behind it"},
    };
    for (const auto& [words, message] : cases)
        EXPECT_THAT(complaint(words), HasSubstr(message));
}

TEST(Arguments, anUnknownOptionOrAMissingValueIsNamed) {
    EXPECT_THAT(complaint({"mine", "/a", "--faster"}), HasSubstr("faster"));
    EXPECT_THAT(complaint({"mine", "/a", "--minutes"}), HasSubstr("minutes"));
    EXPECT_THAT(complaint({"mine", "/a", "--magic=yes"}), HasSubstr("magic"));
}

TEST(Arguments, sliderValuesLieFromNothingToOne) {
    EXPECT_THAT(style({"--slider", "pace=0", "--slider", "pace=1.0"}).sliders,
                ElementsAre(Pair("pace", 0.0), Pair("pace", 1.0)));
    for (const std::string wrong :
         {"pace=1.01", "pace=-0.1", "pace=", "pace", "=0.5", "pace=nan", "Pace=0.5", "pace = 0.5"})
        EXPECT_THAT(complaint({"mine", "/a", "--slider", wrong}), HasSubstr("not \"" + wrong + "\""));
}

TEST(Arguments, withoutPresetTheDefaultsHold) {
    const auto sliders = slidersOf({}, std::nullopt);
    EXPECT_EQ(sliders.pace, 0.5);
    EXPECT_EQ(sliders.structure, 0.5);
    EXPECT_EQ(sliders.emotion, 0.5);
    EXPECT_EQ(sliders.length, 0.5);
    EXPECT_EQ(sliders.boldness, 0.3);
    EXPECT_EQ(sliders.silence, 0.5);
}

TEST(Arguments, aPresetSetsAllSixSliders) {
    const auto sliders = slidersOf({}, "sizzle");
    EXPECT_EQ(sliders.pace, 0.95);
    EXPECT_EQ(sliders.structure, 0.7);
    EXPECT_EQ(sliders.emotion, 0.85);
    EXPECT_EQ(sliders.length, 0.1);
    EXPECT_EQ(sliders.boldness, 0.7);
    EXPECT_EQ(sliders.silence, 0.05);
}

TEST(Arguments, singleSlidersStandOnTopOfThePresetWhateverTheOrder) {
    for (const auto& given : {style({"--slider", "pace=0.4", "--preset", "sizzle", "--slider", "silence=1"}),
                              style({"--preset", "sizzle", "--slider", "silence=1", "--slider", "pace=0.4"}),
                              style({"--slider", "silence=1", "--slider", "pace=0.4", "--preset", "sizzle"})}) {
        const auto sliders = slidersOf(given, given.presetId);
        EXPECT_EQ(sliders.pace, 0.4);
        EXPECT_EQ(sliders.silence, 1.0);
        EXPECT_EQ(sliders.structure, 0.7);
        EXPECT_EQ(sliders.boldness, 0.7);
    }
}

TEST(Arguments, theLastOfASlidersValuesHolds) {
    EXPECT_EQ(slidersOf(style({"--slider", "pace=0.1", "--slider", "pace=0.9"}), std::nullopt).pace, 0.9);
}

TEST(Arguments, anUnknownPresetOfAnOldProjectLeavesTheDefaults) {
    EXPECT_EQ(slidersOf({}, "retired-preset").boldness, 0.3);
}

} // namespace
} // namespace zuvo
