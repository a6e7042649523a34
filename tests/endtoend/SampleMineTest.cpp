// The sample interview mined to its end, once for all the tests here: what the program says, sends and leaves.

#include "base/Text.h"
#include "endtoend/MineTest.h"
#include "endtoend/SrtReader.h"

#include <cmath>
#include <fmt/format.h>
#include <regex>

namespace zuvo::endtoend {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::MatchesRegex;

const std::string project = "Dropped Files (2)";

/// What the interview's author wrote down of each line: its words, whether it is the interviewer far away, and whether
/// the subject leans back.
enum class Nearness { close, aside, far };
constexpr auto close = Nearness::close;
constexpr auto aside = Nearness::aside;
constexpr auto far = Nearness::far;

const std::vector<Nearness>& nearness() {
    static const std::vector<Nearness> lines = {far,   close, close, close, aside, far,   aside, close,
                                                close, close, aside, far,   aside, close, close, close,
                                                far,   close, close, close, aside, aside};
    return lines;
}

struct SpokenLine {
    double start = 0.0; ///< in mine time
    double end = 0.0;
    std::string text;
    std::vector<std::string> words; ///< without punctuation
};

std::string bare(std::string word) {
    std::erase_if(word, [](char c) { return std::string_view(".,;:!?").find(c) != std::string_view::npos; });
    return word;
}

/// The sample's own transcript, its second file behind the first.
std::vector<SpokenLine> spokenLines() {
    std::vector<SpokenLine> lines;
    double offset = 0.0;
    for (const auto& json = jsonOf(sampleFolder() + "/transcript.json"); const auto& file : json.at("files")) {
        for (const auto& line : file.at("lines")) {
            SpokenLine spoken{
                offset + line.at("start").get<double>(), offset + line.at("end").get<double>(), line.at("text"), {}};
            for (const auto& word : line.at("words"))
                spoken.words.push_back(bare(word.at("word")));
            lines.push_back(spoken);
        }
        offset += file.at("duration").get<double>();
    }
    return lines;
}

/// The four runs of lines that are close to the microphone: first and last line.
const std::vector<std::pair<std::size_t, std::size_t>> closeRuns = {{1, 3}, {7, 9}, {13, 15}, {17, 19}};

std::string momentText(const std::pair<std::size_t, std::size_t>& run) {
    const auto lines = spokenLines();
    std::vector<std::string> texts;
    for (std::size_t i = run.first; i <= run.second; ++i)
        texts.push_back(lines.at(i).text);
    return join(texts, " ");
}

class SampleMineTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        world = new World;
        auto words = samplePaths();
        words.insert(words.begin(), "mine");
        ending = new Ending(world->zuvo(words));
        ASSERT_EQ(ending->status, 0) << ending->failure << ending->output << ending->errors;
    }
    static void TearDownTestSuite() {
        delete world;
        delete ending;
    }

    static Json cachedTranscript() {
        const auto keys = namesIn(world->cache("transcripts"));
        EXPECT_EQ(keys.size(), 1U);
        return jsonOf(world->cache("transcripts/" + keys.at(0) + "/transcript.json"));
    }
    static Json results() { return jsonOf(world->exports(project, "mining_results.json")); }

    static inline World* world = nullptr;
    static inline Ending* ending = nullptr;
};

TEST_F(SampleMineTest, theLogIsTheseLinesInThisOrder) {
    const auto audioBytes = bytesOf(world->cache("extracted_audio.wav")).size();
    const auto size = fmt::format("{:.1f}", static_cast<double>(audioBytes) / 1'000'000.0);
    const std::vector<std::string> expected = {
        R"(\$ zuvo mine --files 2 --mode full-mine)",
        "Using 2 dropped files\\.\\.\\.",
        "  → harbour_interview_01\\.m4a",
        "  → harbour_interview_02\\.m4a",
        "📋 Probing 2 source files\\.\\.\\.",
        "  harbour_interview_01\\.m4a: 1:03, TC: none, 48000Hz",
        "  harbour_interview_02\\.m4a: 1:05, TC: none, 48000Hz",
        "✓ Probed 2 files",
        "Extracting audio from files\\.\\.\\.",
        "Audio extracted — " + size + " MB",
        "Preparing audio chunks\\.\\.\\.",
        "Split into 1 chunk for Whisper",
        "⛏ Transcribing with Whisper\\.\\.\\.",
        "  Transcribing chunk 1/1\\.\\.\\.",
        "22 segments · 343 words",
        "⛏ Claude analyzing story structure\\.\\.\\.",
        "  Extracting audio energy profile\\.\\.\\.",
        "  Primary channel: LEFT",
        "  harbour_interview_01\\.m4a: 63s extracted",
        "  harbour_interview_02\\.m4a: 65s extracted",
        "  Energy: 12 loud, 6 medium, 4 quiet — thresholds: quiet<-[0-9]+dB<med<-[0-9]+dB<loud",
        "  Sending [0-9]+ chars to Claude \\(energy-annotated\\)\\.\\.\\.",
        "🔑 API key found \\(made-up-anth\\.\\.\\.\\)",
        "📋 Source clip map: harbour_interview_01\\.m4a: 0\\.0s–63\\.0s, harbour_interview_02\\.m4a: 63\\.0s–128\\.0s",
        "💎 Found 3 acts · 4 moments",
        "⛏ Re-transcribing selected moments at word level\\.\\.\\.",
        "  Word transcribing segment 1/4\\.\\.\\.",
        "  Word transcribing segment 2/4\\.\\.\\.",
        "  Word transcribing segment 3/4\\.\\.\\.",
        "  Word transcribing segment 4/4\\.\\.\\.",
        "✓ [0-9]+ words transcribed across 4 segments",
        "✓ Exported SRT, transcript, and story brief",
        "  Wrote 4 segments to cache",
        "Segments file written — ready for export",
        "✓ Complete — we found gems!",
    };
    const auto log = ending->log();
    ASSERT_EQ(log.size(), expected.size()) << ending->output;
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_TRUE(std::regex_match(log[i], std::regex(expected[i]))) << log[i] << "\n" << expected[i];
}

TEST_F(SampleMineTest, everyLineBeginsWithMinutesAndSeconds) {
    for (const auto& line : linesOf(ending->output))
        EXPECT_TRUE(std::regex_match(line, std::regex("[0-5][0-9]:[0-5][0-9] .*"))) << line;
}

TEST_F(SampleMineTest, theExportFolderIsNamedBesideTheLog) {
    EXPECT_EQ(ending->errors, "Export folder: " + world->exports(project) + "\n");
}

TEST_F(SampleMineTest, whatIsNotATerminalGetsNoEscapeBytes) {
    EXPECT_EQ(ending->output.find('\x1b'), std::string::npos);
    EXPECT_EQ(ending->output.find('\r'), std::string::npos);
}

TEST_F(SampleMineTest, theseFilesAreLeft) {
    EXPECT_THAT(namesIn(world->exports(project)), ElementsAre("mining_results.json", "project.json", "story_brief.md",
                                                              "subtitles.srt", "transcript.txt"));
    EXPECT_THAT(namesIn(world->cache()),
                ElementsAre("chunks", "concat.txt", "extracted_audio.wav", "mine.lock", "probe_results.json",
                            "segments.json", "transcripts", "word_seg_0.wav", "word_seg_1.wav", "word_seg_2.wav",
                            "word_seg_3.wav", "word_timestamps.json"));
    EXPECT_TRUE(namesIn(world->cache("chunks")).empty()) << "one chunk is the extracted audio itself";
    EXPECT_THAT(namesIn(world->home()), ElementsAre("Library"));
}

TEST_F(SampleMineTest, noTemporaryFileIsLeftAndTheLockIsEmpty) {
    const auto folders = namesIn(world->temporary());
    ASSERT_EQ(folders.size(), 1U) << "this user's own";
    const auto folder = world->temporary() + "/" + folders[0];
    EXPECT_TRUE(namesIn(folder).empty());
    EXPECT_EQ(bytesOf(world->cache("mine.lock")), "");
}

TEST_F(SampleMineTest, probeResultsHaveTwelveKeysForEachFile) {
    const auto probe = jsonOf(world->cache("probe_results.json"));
    ASSERT_EQ(probe.size(), 2U);
    for (std::size_t i = 0; i < 2; ++i) {
        const std::string name = i == 0 ? "harbour_interview_01.m4a" : "harbour_interview_02.m4a";
        const auto& entry = probe.at(name);
        EXPECT_EQ(entry.size(), 12U);
        EXPECT_EQ(entry.at("path"), samplePaths()[i]);
        EXPECT_EQ(entry.at("filename"), name);
        EXPECT_NEAR(entry.at("duration").get<double>(), i == 0 ? 63.131 : 65.34, 0.1);
        EXPECT_TRUE(entry.at("startTimecode").is_null());
        EXPECT_TRUE(entry.at("startTimecodeSeconds").is_null());
        EXPECT_EQ(entry.at("sampleRate"), 48000);
        EXPECT_TRUE(entry.at("fps").is_null());
        EXPECT_EQ(entry.at("codec"), "aac");
        EXPECT_EQ(entry.at("hasVideo"), false);
        EXPECT_EQ(entry.at("hasAudio"), true);
        EXPECT_EQ(entry.at("channels"), 2);
        EXPECT_EQ(entry.at("bitDepth"), 0);
    }
}

TEST_F(SampleMineTest, theConcatListHasOneLineAFileAndNoLineEndBehindIt) {
    EXPECT_EQ(bytesOf(world->cache("concat.txt")), "file '" + samplePaths()[0] + "'\nfile '" + samplePaths()[1] + "'");
}

TEST_F(SampleMineTest, theExtractedAudioIsBothFilesAtSixteenThousandSamplesASecond) {
    const auto audio = bytesOf(world->cache("extracted_audio.wav"));
    EXPECT_EQ(audio.substr(0, 4) + audio.substr(8, 4), "RIFFWAVE");
    constexpr double bytesASecond = 32000.0;
    EXPECT_NEAR(static_cast<double>(audio.size()) / bytesASecond, 63.131 + 65.34, 0.2);
}

TEST_F(SampleMineTest, theTranscriptIsTheInterviewOnOneTimeLine) {
    const auto cached = cachedTranscript();
    EXPECT_EQ(cached.at("language"), "english");
    EXPECT_EQ(cached.at("mediaPaths"), Json(samplePaths()));
    const auto spoken = spokenLines();
    ASSERT_EQ(cached.at("segments").size(), spoken.size());
    constexpr double seam = 0.1; // seconds by which the decoder's joint of the files may move the second
    for (std::size_t i = 0; i < spoken.size(); ++i) {
        const auto& segment = cached.at("segments").at(i);
        EXPECT_EQ(segment.size(), 3U);
        EXPECT_EQ(segment.at("text"), spoken[i].text);
        EXPECT_NEAR(segment.at("start").get<double>(), spoken[i].start, seam);
        EXPECT_NEAR(segment.at("end").get<double>(), spoken[i].end, seam);
    }
}

TEST_F(SampleMineTest, theStoryIsTheFourRunsCloseToTheMicrophone) {
    const auto segments = jsonOf(world->cache("segments.json"));
    const auto spoken = spokenLines();
    ASSERT_EQ(segments.size(), closeRuns.size());
    for (std::size_t i = 0; i < closeRuns.size(); ++i) {
        const auto& segment = segments.at(i);
        EXPECT_EQ(segment.size(), 7U);
        EXPECT_EQ(segment.at("index"), i);
        EXPECT_EQ(segment.at("transcript"), momentText(closeRuns[i]));
        EXPECT_EQ(segment.at("translation"), momentText(closeRuns[i]));
        EXPECT_NEAR(segment.at("startTime").get<double>(), spoken[closeRuns[i].first].start, 0.15);
        EXPECT_NEAR(segment.at("endTime").get<double>(), spoken[closeRuns[i].second].end, 0.15);
        EXPECT_EQ(segment.at("sourceClip"), i < 2 ? "harbour_interview_01.m4a" : "harbour_interview_02.m4a");
        EXPECT_TRUE(segment.at("chapter").is_string());
    }
    EXPECT_THAT(bytesOf(world->cache("segments.json")), testing::StartsWith("[\n  {\n    \"chapter\": "));
}

TEST_F(SampleMineTest, wordTimesCountFromTheStartOfTheirMoment) {
    const auto timestamps = jsonOf(world->cache("word_timestamps.json"));
    const auto segments = jsonOf(world->cache("segments.json"));
    const auto spoken = spokenLines();
    ASSERT_EQ(timestamps.size(), closeRuns.size());
    for (std::size_t i = 0; i < closeRuns.size(); ++i) {
        EXPECT_EQ(timestamps.at(i).size(), 2U);
        EXPECT_EQ(timestamps.at(i).at("segmentIndex"), i);
        std::vector<std::string> expected;
        for (std::size_t line = closeRuns[i].first; line <= closeRuns[i].second; ++line)
            expected.insert(expected.end(), spoken[line].words.begin(), spoken[line].words.end());
        std::vector<std::string> heard;
        const double length = segments.at(i).at("endTime").get<double>() - segments.at(i).at("startTime").get<double>();
        for (const auto& word : timestamps.at(i).at("words")) {
            EXPECT_EQ(word.size(), 3U);
            heard.push_back(word.at("word"));
            EXPECT_GE(word.at("start").get<double>(), 0.0);
            EXPECT_LE(word.at("end").get<double>(), length + 0.1);
        }
        EXPECT_THAT(heard, ElementsAreArray(expected));
    }
}

TEST_F(SampleMineTest, theResultsAreTheStoryWithItsSources) {
    const auto story = results();
    EXPECT_EQ(story.size(), 4U);
    EXPECT_EQ(story.at("segments"), jsonOf(world->cache("segments.json")));
    std::vector<std::vector<int>> acts;
    for (const auto& act : story.at("structure").at("acts"))
        acts.push_back(act.at("segments"));
    EXPECT_THAT(acts, ElementsAre(ElementsAre(0), ElementsAre(1), ElementsAre(2, 3)));
    double total = 0.0;
    for (const auto& segment : story.at("segments"))
        total += segment.at("endTime").get<double>() - segment.at("startTime").get<double>();
    EXPECT_NEAR(story.at("estimatedDuration").get<double>(), total, 0.01);
    EXPECT_EQ(bytesOf(world->exports(project, "mining_results.json")).find('\n'), std::string::npos);
}

TEST_F(SampleMineTest, theProjectHoldsTranscriptStoryAndChoices) {
    const auto saved = jsonOf(world->exports(project, "project.json"));
    EXPECT_EQ(saved.at("timeline"), project);
    EXPECT_EQ(saved.at("language"), "english");
    EXPECT_EQ(saved.at("mediaPaths"), Json(samplePaths()));
    EXPECT_EQ(saved.at("transcript"), cachedTranscript().at("segments"));
    EXPECT_EQ(saved.at("results"), results());
    EXPECT_EQ(saved.at("targetMinutes"), 5.0);
    EXPECT_FALSE(saved.contains("presetId"));
    EXPECT_GT(saved.at("createdAt").get<double>(), 1.7e9);
}

TEST_F(SampleMineTest, aPlayerCanReadTheSubtitles) {
    const auto cards = readSrt(bytesOf(world->exports(project, "subtitles.srt")));
    ASSERT_TRUE(cards);
    std::string shown;
    double reached = 0.0;
    for (std::size_t i = 0; i < cards->size(); ++i) {
        const auto& card = cards->at(i);
        EXPECT_EQ(card.number, static_cast<int>(i) + 1);
        EXPECT_GE(card.start, reached);
        EXPECT_GT(card.end, card.start);
        reached = card.end;
        shown += (shown.empty() ? "" : " ") + card.text;
    }
    std::vector<std::string> told;
    double length = 0.0;
    for (const auto& json = jsonOf(world->cache("segments.json")); const auto& segment : json) {
        told.push_back(segment.at("translation"));
        length += segment.at("endTime").get<double>() - segment.at("startTime").get<double>();
    }
    EXPECT_EQ(shown, join(told, " ")) << "every word of the story stands on a card, in order";
    EXPECT_LE(reached, length + 0.001);
}

TEST_F(SampleMineTest, theTranscriptFileHasEveryLineAtItsMineTime) {
    std::string expected = "# Full Transcript\n\n";
    for (const auto& json = cachedTranscript(); const auto& segment : json.at("segments")) {
        const auto seconds = static_cast<int>(segment.at("start").get<double>());
        expected += fmt::format("[{}:{:02}] {}\n", seconds / 60, seconds % 60, segment.at("text").get<std::string>());
    }
    EXPECT_EQ(bytesOf(world->exports(project, "transcript.txt")), expected);
}

TEST_F(SampleMineTest, theStoryBriefTellsActsAndMoments) {
    const auto story = results();
    const auto time = [](const Json& seconds) {
        const auto whole = static_cast<int>(seconds.get<double>());
        return fmt::format("{}:{:02}", whole / 60, whole % 60);
    };
    std::string expected = "# Story Brief — Dropped Files (2)\n\nGenerated by Zuvo on DATE\n\n## Structure\n\n"
                           "### Act 1: Beginnings\nSegments: 0\n\n"
                           "### Act 2: The Turn\nSegments: 1\n\n"
                           "### Act 3: Where It Leads\nSegments: 2, 3\n\n## Segments\n\n";
    for (const auto& segment : story.at("segments"))
        expected += "**[" + time(segment.at("startTime")) + " → " + time(segment.at("endTime")) + "]** " +
                    segment.at("chapter").get<std::string>() + "\n> " + segment.at("transcript").get<std::string>() +
                    "\n\n";
    const std::regex date(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d \+0000)");
    EXPECT_EQ(std::regex_replace(bytesOf(world->exports(project, "story_brief.md")), date, "DATE"), expected);
}

/// A transcription body with {B} for the boundary.
std::string expectedBody(const std::string& granularity, const std::string& language, const std::string& fileName,
                         const std::string& audio) {
    std::string body = "--{B}\r\nContent-Disposition: form-data; name=\"model\"\r\n\r\nwhisper-1\r\n"
                       "--{B}\r\nContent-Disposition: form-data; name=\"response_format\"\r\n\r\nverbose_json\r\n"
                       "--{B}\r\nContent-Disposition: form-data; name=\"timestamp_granularities[]\"\r\n\r\n" +
                       granularity + "\r\n";
    if (!language.empty())
        body += "--{B}\r\nContent-Disposition: form-data; name=\"language\"\r\n\r\n" + language + "\r\n";
    return body + "--{B}\r\nContent-Disposition: form-data; name=\"file\"; filename=\"" + fileName +
           "\"\r\nContent-Type: audio/wav\r\n\r\n" + audio + "\r\n--{B}--\r\n";
}

std::string withBoundaryMasked(const standin::RecordedRequest& request, std::string& boundary) {
    const std::string type = request.header("Content-Type");
    const std::string start = "multipart/form-data; boundary=";
    EXPECT_EQ(type.substr(0, start.size()), start);
    boundary = type.substr(start.size());
    return replaceAll(request.body, boundary, "{B}");
}

TEST_F(SampleMineTest, oneTranscriptionRequestForTheChunkAndOneForEachMoment) {
    const auto requests = world->services.requests(standin::Service::transcription);
    ASSERT_EQ(requests.size(), 5U);
    std::vector<std::string> boundaries;
    for (std::size_t i = 0; i < requests.size(); ++i) {
        const auto& request = requests[i];
        EXPECT_EQ(request.method, "POST");
        EXPECT_EQ(request.path, "/v1/audio/transcriptions");
        EXPECT_EQ(request.header("Authorization"), "Bearer made-up-openai-key");
        EXPECT_FALSE(request.hasHeader("Cookie"));
        const std::string file = i == 0 ? "extracted_audio.wav" : "word_seg_" + std::to_string(i - 1) + ".wav";
        std::string boundary;
        const auto body = withBoundaryMasked(request, boundary);
        // Not EXPECT_EQ: a difference would print megabytes of sound.
        EXPECT_TRUE(body == expectedBody(i == 0 ? "segment" : "word", "", file, bytesOf(world->cache(file)))) << file;
        EXPECT_THAT(boundary, MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}"));
        boundaries.push_back(boundary);
    }
    std::sort(boundaries.begin(), boundaries.end());
    EXPECT_EQ(std::unique(boundaries.begin(), boundaries.end()), boundaries.end()) << "each request has its own";
}

TEST_F(SampleMineTest, theMessagesRequestHasThreeHeadersAndThreeKeys) {
    const auto requests = world->services.requests(standin::Service::messages);
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].method, "POST");
    EXPECT_EQ(requests[0].path, "/v1/messages");
    EXPECT_EQ(requests[0].header("x-api-key"), "made-up-anthropic-key");
    EXPECT_EQ(requests[0].header("anthropic-version"), "2023-06-01");
    EXPECT_EQ(requests[0].header("content-type"), "application/json");
    EXPECT_FALSE(requests[0].hasHeader("Authorization"));
    const auto body = Json::parse(requests[0].body);
    EXPECT_EQ(body.size(), 3U);
    EXPECT_EQ(body.at("model"), "claude-sonnet-4-20250514");
    EXPECT_EQ(body.at("max_tokens"), 8000);
    ASSERT_EQ(body.at("messages").size(), 1U);
    EXPECT_EQ(body.at("messages").at(0).size(), 2U);
    EXPECT_EQ(body.at("messages").at(0).at("role"), "user");
    EXPECT_TRUE(body.at("messages").at(0).at("content").is_string());
}

/// The lines with the marks that the author's notes give: close is loud, aside is medium, far is quiet.
std::string annotated(const Json& segments) {
    std::string text;
    for (std::size_t i = 0; i < segments.size(); ++i) {
        const auto mark = nearness().at(i) == close ? "🔊" : nearness().at(i) == aside ? "🔉" : "🔇";
        text += fmt::format("[{:.1f}-{:.1f}s] {} {}\n", segments[i].at("start").get<double>(),
                            segments[i].at("end").get<double>(), mark, segments[i].at("text").get<std::string>());
    }
    return text;
}

TEST_F(SampleMineTest, thePromptIsTheTemplateFilledToTheByte) {
    const auto segments = cachedTranscript().at("segments");
    const auto end = segments.back().at("end").get<double>();
    auto prompt = bytesOf(std::string(ZUVO_TEST_FOLDER) + "/golden/endtoend/story_prompt_template.txt");
    const std::vector<std::pair<std::string, std::string>> values = {
        {"{targetMinutesInt}", "5"},
        {"{targetSecondsInt}", "300"},
        {"{style}", "Moderate pace\nBalanced structure\nModerate emotion\nMedium length segments\n"
                    "Moderate boldness\nBalanced silence"},
        {"{loud}", "12"},
        {"{medium}", "6"},
        {"{quiet}", "4"},
        {"{totalMinutes}", "2"},
        {"{totalSeconds}", fmt::format("{:.0f}", end)},
        {"{sourceLanguage}", "english"},
        {"{transcript}", annotated(segments)},
    };
    for (const auto& [name, value] : values)
        prompt = replaceAll(prompt, name, value);
    const auto request = world->services.requests(standin::Service::messages).at(0);
    const std::string sent = Json::parse(request.body).at("messages").at(0).at("content");
    EXPECT_EQ(sent, prompt);
}

TEST_F(SampleMineTest, theLogTellsTheLengthOfTheAnnotatedTranscript) {
    const auto text = annotated(cachedTranscript().at("segments"));
    // All of it is one character a code point: count what is no continuation byte.
    const auto length = std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; });
    EXPECT_THAT(ending->output, HasSubstr("  Sending " + std::to_string(length) + " chars to Claude"));
}

TEST_F(SampleMineTest, theLogCountsTheWordsOfAllMoments) {
    std::size_t words = 0;
    for (const auto& json = jsonOf(world->cache("word_timestamps.json")); const auto& entry : json)
        words += entry.at("words").size();
    EXPECT_THAT(ending->output, HasSubstr("✓ " + std::to_string(words) + " words transcribed across 4 segments"));
}

} // namespace
} // namespace zuvo::endtoend
