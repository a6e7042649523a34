#include "fakes/TemporaryFolder.h"
#include "model/FileLimits.h"
#include "model/MiningResults.h"
#include "ui/EchoLines.h"
#include "ui/LiveCaption.h"
#include "ui/MediaPlaces.h"
#include "ui/ReviewAction.h"
#include "ui/ReviewTexts.h"
#include "ui/Symbols.h"

#include <gmock/gmock.h>

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const QLocale english(QLocale::English, QLocale::UnitedStates);
const QLocale turkish(QLocale::Turkish, QLocale::Turkey);

StorySegment inChapter(std::optional<std::string> chapter) {
    StorySegment segment;
    segment.chapter = std::move(chapter);
    return segment;
}

/// The runs with matches in brackets.
QString marked(const QString& text, const QString& search, const QLocale& locale = english) {
    QString joined;
    for (const auto& run : highlightedText(text, search, locale))
        joined += run.isMatch ? QLatin1Char('[') + run.text + QLatin1Char(']') : run.text;
    return joined;
}

std::vector<TranscriptSegment> lines(const std::vector<std::string>& texts) {
    std::vector<TranscriptSegment> made;
    for (const auto& text : texts)
        made.push_back({static_cast<double>(made.size()), static_cast<double>(made.size() + 1), text, "en"});
    return made;
}

QStringList found(const std::vector<std::string>& texts, const QString& search, const QLocale& locale = english) {
    EchoLines echo;
    echo.setLocale(locale);
    echo.setTranscript(lines(texts));
    echo.setSearch(search);
    QStringList shown;
    for (int row = 0; row < echo.rowCount(); ++row)
        shown.append(echo.index(row).data(EchoLines::Text).toString());
    return shown;
}

std::vector<WordTimestampData> wordsAt(const std::vector<double>& starts) {
    std::vector<WordTimestampData> words;
    for (const auto start : starts)
        words.push_back({QUuid::createUuid(), "w", start, start + 0.1});
    return words;
}

} // namespace

// Texts.

TEST(ReviewTexts, timesAreMinutesAndTwoDigitSecondsCutOff) {
    const std::vector<std::pair<double, const char*>> cases = {
        {0.0, "0:00"},  {0.999, "0:00"}, {9.5, "0:09"},     {59.999, "0:59"},
        {60.0, "1:00"}, {131.9, "2:11"}, {3600.0, "60:00"}, {5999.99, "99:59"},
    };
    for (const auto& [seconds, text] : cases)
        EXPECT_EQ(review::formatTime(seconds), QString::fromUtf8(text)) << seconds;
}

TEST(ReviewTexts, lengthsAreWholeSecondsCutOff) {
    EXPECT_EQ(review::formatDuration(25.9), QStringLiteral("25s"));
    EXPECT_EQ(review::formatDuration(0.0), QStringLiteral("0s"));
    EXPECT_EQ(review::formatDuration(125.0), QStringLiteral("125s"));
}

TEST(ReviewTexts, chaptersTakeTheGemsInOrderOfFirstOccurrence) {
    const auto gems = chapterGems(
        {inChapter("b"), inChapter("a"), inChapter("b"), inChapter(std::nullopt), inChapter(""), inChapter("c")});
    EXPECT_THAT(gems, ElementsAre(0, 1, 0, std::nullopt, std::nullopt, 2));
}

TEST(ReviewTexts, theSeventhChapterHasTheFirstGemAgain) {
    std::vector<StorySegment> segments;
    for (const auto* name : {"a", "b", "c", "d", "e", "f", "g"})
        segments.push_back(inChapter(name));
    EXPECT_THAT(chapterGems(segments), ElementsAre(0, 1, 2, 3, 4, 5, 0));
}

TEST(ReviewTexts, everySymbolOfThePageHasADrawing) {
    for (const auto* name :
         {"rectangle.stack", "doc.text.magnifyingglass", "list.bullet", "rectangle.on.rectangle.angled", "paintbrush",
          "play.fill", "stop.fill", "trash", "magnifyingglass", "xmark.circle.fill"}) {
        EXPECT_FALSE(symbolImage(QString::fromUtf8(name), Qt::white, {32, 32}).isNull()) << name;
    }
}

// The log of edits.

TEST(ReviewActionTest, timesInTheDetailHaveOneDecimalWhateverTheLocale) {
    StorySegment segment;
    segment.index = 7;
    segment.startTime = 3.25;
    segment.endTime = 12.0;
    QLocale::setDefault(QLocale(QLocale::German));
    EXPECT_EQ(*deletion(segment, 4, 1.0).detail, "index 4, 3.2-12.0s");
    EXPECT_EQ(*reordering(segment, 0, 12, 1.0).detail, "moved from 0 to 12");
    QLocale::setDefault(QLocale::c());
}

// Which file holds what.

TEST(MediaPlaces, theFilesLieEndToEndByStartTimecode) {
    TemporaryFolder cache;
    cache.write("probe_results.json", R"({"a.wav":{"duration":10,"startTimecodeSeconds":50.5},
        "b.wav":{"duration":5.5,"startTimecodeSeconds":20},"c.wav":{"duration":1},"d.wav":{"duration":0},
        "e.wav":{"startTimecodeSeconds":1},"f.wav":{"duration":"9"},"z.wav":{"duration":3}})");
    const auto places = placesFromProbe(
        cache.path(), {"/m/a.wav", "/m/b.wav", "/n/c.wav", "/m/d.wav", "/m/e.wav", "/m/f.wav", "/m/unknown.wav"});
    ASSERT_EQ(places.size(), 3U);
    EXPECT_EQ(places[0].path, "/n/c.wav");
    EXPECT_EQ(places[0].seqEnd, 1.0);
    EXPECT_EQ(places[1].path, "/m/b.wav");
    EXPECT_EQ(places[1].seqStart, 1.0);
    EXPECT_EQ(places[2].path, "/m/a.wav");
    EXPECT_EQ(places[2].seqStart, 6.5);
    EXPECT_EQ(places[2].seqEnd, 16.5);
}

TEST(MediaPlaces, equalTimecodesKeepTheOrderGiven) {
    TemporaryFolder cache;
    cache.write("probe_results.json", R"({"a":{"duration":1},"b":{"duration":1},"c":{"duration":1}})");
    const auto places = placesFromProbe(cache.path(), {"/c", "/a", "/b"});
    ASSERT_EQ(places.size(), 3U);
    EXPECT_EQ(places[0].path + places[1].path + places[2].path, "/c/a/b");
}

TEST(MediaPlaces, aProbeFileThatIsMissingOrNoObjectKnowsNothing) {
    TemporaryFolder cache;
    EXPECT_THAT(placesFromProbe(cache.path(), {"/a"}), IsEmpty());
    for (const auto* text : {"", "[]", "7", "{\"a\":7}", "{\"a\":{\"duration\":true}}"}) {
        cache.write("probe_results.json", text);
        EXPECT_THAT(placesFromProbe(cache.path(), {"/a"}), IsEmpty()) << text;
    }
}

TEST(MediaPlaces, aFilesEndBelongsToTheNextOne) {
    const auto places = laidEndToEnd({{"/a", 20.0}, {"/b", 11.0}});
    const std::vector<std::tuple<double, const char*, double>> cases = {
        {0.0, "/a", 0.0},   {19.9, "/a", 19.9}, {20.0, "/b", 0.0},
        {30.5, "/b", 10.5}, {31.0, "/a", 31.0}, {-1.0, "/a", -1.0},
    };
    for (const auto& [time, path, local] : cases) {
        const auto place = placeOf(time, places);
        ASSERT_TRUE(place);
        EXPECT_EQ(place->path, path) << time;
        EXPECT_DOUBLE_EQ(place->seconds, local) << time;
    }
    EXPECT_FALSE(placeOf(0.0, {}));
}

TEST(MediaPlaces, namesAreSortedWithoutTheirFolders) {
    EXPECT_THAT(sortedByName({"/z/a", "/a/b", "/b/a"}), ElementsAre("/z/a", "/b/a", "/a/b"));
}

// The live caption.

TEST(LiveCaption, theActiveWordIsTheLastThatHasBegun) {
    const auto words = wordsAt({0.5, 1.0, 1.0, 2.0});
    EXPECT_EQ(activeIndex(words, 0.4), std::nullopt);
    EXPECT_EQ(activeIndex(words, 0.5), 0U);
    EXPECT_EQ(activeIndex(words, 1.0), 2U);
    EXPECT_EQ(activeIndex(words, 99.0), 3U);
    EXPECT_EQ(activeIndex({}, 1.0), std::nullopt);
}

TEST(LiveCaption, sevenWordsAreInSightWithThreeBeforeTheActiveOne) {
    struct Case {
        std::size_t count;
        std::optional<std::size_t> active;
        std::size_t start;
        std::size_t end;
    };
    const std::vector<Case> cases = {
        {20, std::nullopt, 0, 7}, {20, 0, 0, 7},    {20, 3, 0, 7}, {20, 4, 1, 8}, {20, 16, 13, 20},
        {20, 17, 13, 20},         {20, 19, 13, 20}, {5, 4, 0, 5},  {7, 6, 0, 7},  {0, std::nullopt, 0, 0},
    };
    for (const auto& [count, active, start, end] : cases) {
        const auto range = visibleRange(count, active);
        EXPECT_EQ(range.start, start) << count << " " << active.value_or(99);
        EXPECT_EQ(range.end, end) << count << " " << active.value_or(99);
    }
}

TEST(LiveCaption, wordsWithoutTextOrTimeAreLeftOut) {
    TemporaryFolder cache;
    cache.write("word_timestamps.json", R"([{"segmentIndex":3,"words":[{"word":"a","start":0,"end":1},{"word":"b"},
        {"word":5,"start":0,"end":1},7,{"word":"c","start":1.5,"end":2}]},{"segmentIndex":4.5,"words":[]},
        {"segmentIndex":5,"words":"x"},{"words":[]},9])");
    const auto loaded = loadWordTimestamps(cache.path());
    ASSERT_TRUE(loaded);
    ASSERT_EQ(loaded->size(), 1U);
    ASSERT_EQ(loaded->at(3).size(), 2U);
    EXPECT_EQ(loaded->at(3)[1].word, "c");
    EXPECT_EQ(loaded->at(3)[1].start, 1.5);
    EXPECT_NE(loaded->at(3)[0].id, loaded->at(3)[1].id);
}

TEST(LiveCaption, aFileThatIsNoListGivesNothing) {
    TemporaryFolder cache;
    EXPECT_FALSE(loadWordTimestamps(cache.path()));
    cache.write("word_timestamps.json", "{}");
    EXPECT_FALSE(loadWordTimestamps(cache.path()));
}

// The Echo.

TEST(Echo, withoutASearchAllLinesAreShown) {
    EXPECT_EQ(found({"one", "two"}, QString()), QStringList({QStringLiteral("one"), QStringLiteral("two")}));
}

TEST(Echo, theSearchIgnoresCase) {
    EXPECT_EQ(found({"La Mar", "mARcharse", "cielo"}, QStringLiteral("mar")).size(), 2);
    EXPECT_EQ(found({"ΟΔΟΣ", "οδός"}, QStringLiteral("οδος")), QStringList({QStringLiteral("ΟΔΟΣ")}));
    EXPECT_EQ(found({"ÁRBOL", "arbol"}, QStringLiteral("árb")), QStringList({QStringLiteral("ÁRBOL")}));
}

TEST(Echo, accentsCountHoweverTheyAreWritten) {
    EXPECT_EQ(found({"mas", "m\u00e1s", "ma\u0301s"}, QStringLiteral("m\u00e1s")).size(), 2);
    EXPECT_EQ(found({"mas", "m\u00e1s", "ma\u0301s"}, QStringLiteral("mas")).size(), 1);
}

TEST(Echo, caseFollowsTheUsersLanguage) {
    const std::vector<std::string> texts = {"IŞIK", "İstanbul", "ispat"};
    EXPECT_EQ(found(texts, QStringLiteral("ı"), turkish).size(), 1);
    EXPECT_EQ(found(texts, QStringLiteral("is"), turkish).size(), 2);
    EXPECT_EQ(found({"INK"}, QStringLiteral("ink"), english).size(), 1);
    EXPECT_EQ(found({"INK"}, QStringLiteral("ink"), turkish).size(), 0);
}

TEST(Echo, typingOnNarrowsAndDeletingWidensAgain) {
    EchoLines echo;
    echo.setTranscript(lines({"mar", "marea", "mundo", "sol"}));
    std::vector<int> counts;
    for (const auto* search : {"m", "ma", "mare", "ma", "sol", ""}) {
        echo.setSearch(QString::fromUtf8(search));
        counts.push_back(echo.rowCount());
    }
    EXPECT_THAT(counts, ElementsAre(3, 2, 1, 2, 1, 4));
}

TEST(Echo, aNewTranscriptIsShownWhole) {
    EchoLines echo;
    echo.setTranscript(lines({"a", "b"}));
    echo.setSearch(QStringLiteral("a"));
    echo.setTranscript(lines({"c", "d", "e"}));
    EXPECT_EQ(echo.rowCount(), 3);
    echo.setSearch(QStringLiteral("a"));
    EXPECT_EQ(echo.rowCount(), 0);
}

TEST(Echo, matchesAreCutOutWithTheirOwnCase) {
    const std::vector<std::array<const char*, 3>> cases = {
        {"La mar te ense\u00f1a", "mar", "La [mar] te ense\u00f1a"},
        {"Marcharse al MAR", "mar", "[Mar]charse al [MAR]"},
        {"aaa", "aa", "[aa]a"},
        {"mar", "", "mar"},
        {"", "mar", ""},
        {"cielo", "mar", "cielo"},
        {"marmar", "mar", "[mar][mar]"},
        {"ma\u0301s y m\u00e1s", "m\u00e1s", "[ma\u0301s] y [m\u00e1s]"},
        {"\u0130x mar", "mar", "\u0130x [mar]"},
        {"\U0001F30A mar", "mar", "\U0001F30A [mar]"},
    };
    for (const auto& [text, search, expected] : cases)
        EXPECT_EQ(marked(QString::fromUtf8(text), QString::fromUtf8(search)), QString::fromUtf8(expected)) << text;
}

TEST(Echo, aLineThatLooksLikeMarkupIsShownAsItIs) {
    EchoLines echo;
    echo.setMatchColor(QColor(0xe8, 0x44, 0x0a));
    echo.setTranscript(lines({"<b>mar</b> & <img src=\"x\">"}));
    echo.setSearch(QStringLiteral("mar"));
    EXPECT_EQ(
        echo.index(0).data(EchoLines::Markup).toString(),
        QStringLiteral("&lt;b&gt;<font color=\"#e8440a\">mar</font>&lt;/b&gt; &amp; &lt;img src=&quot;x&quot;&gt;"));
}

TEST(Echo, timesStandBesideTheLines) {
    EchoLines echo;
    echo.setTranscript({{612.9, 615.0, "text", "es"}});
    EXPECT_EQ(echo.index(0).data(EchoLines::Time), QStringLiteral("10:12"));
}

TEST(Echo, aLongTranscriptIsSearchedWhole) {
    std::vector<std::string> texts(50000, "Aquella noche no había cielo ni había mar");
    texts[49999] = "La ÚLTIMA línea";
    EXPECT_EQ(found(texts, QStringLiteral("última")), QStringList({QStringLiteral("La ÚLTIMA línea")}));
}

// Files that are larger than any of ours.

namespace {

/// The text with so many blanks behind it that it has one byte more than the limit.
std::string justTooLarge(std::string text, std::uint64_t limit) {
    text.resize(limit + 1, ' ');
    return text;
}

} // namespace

TEST(ReviewFiles, aProbeFileThatIsTooLargeCountsAsMissing) {
    const std::string probe = R"({"a": {"duration": 10.0}})";
    const TemporaryFolder cache;
    cache.write("probe_results.json", probe);
    ASSERT_EQ(placesFromProbe(cache.path(), {"/a"}).size(), 1U);
    cache.write("probe_results.json", justTooLarge(probe, FileLimits::probeCache));
    EXPECT_THAT(placesFromProbe(cache.path(), {"/a"}), IsEmpty());
}

TEST(ReviewFiles, aFileOfWordTimesThatIsTooLargeCountsAsMissing) {
    const TemporaryFolder cache;
    cache.write("word_timestamps.json", "[]");
    ASSERT_TRUE(loadWordTimestamps(cache.path()));
    cache.write("word_timestamps.json", justTooLarge("[]", FileLimits::wordTimestamps));
    EXPECT_FALSE(loadWordTimestamps(cache.path()));
}

TEST(ReviewFiles, aFileOfActionsThatIsTooLargeStaysAsItIs) {
    const TemporaryFolder home;
    const ReviewAction action = deletion({}, 0, 1.0);
    saveReviewActions(home.path(), {action});
    const std::string file = "Library/Application Support/ZuvoManager/review_actions.json";
    const auto one = home.read(file);
    saveReviewActions(home.path(), {action});
    EXPECT_GT(home.read(file).size(), one.size());
    const auto large = justTooLarge(one, FileLimits::reviewActions);
    home.write(file, large);
    saveReviewActions(home.path(), {action});
    EXPECT_TRUE(home.read(file) == large) << "what is there is not given up for one action";
}
