#include "fakes/pipeline/PipelineFixture.h"

#include "base/Json.h"
#include "base/Numbers.h"
#include "base/Text.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <iterator>
#include <regex>
#include <unistd.h>

namespace zuvo::tests {

const char* const fixtureStory = R"({
    "segments": [
        {"index": 0, "startTime": 0.0, "endTime": 10.0, "sourceClip": "source", "transcript": "uno dos",
         "translation": "one two", "chapter": "Start"},
        {"index": 1, "startTime": 100.0, "endTime": 110.5, "sourceClip": "source", "transcript": "tres",
         "translation": "three"}
    ],
    "structure": {"acts": [{"name": "Act 1", "segments": [0, 1]}], "totalDuration": 20.5},
    "subtitles": [],
    "estimatedDuration": 21.0
})";

PipelineFixture::PipelineFixture() {
    auto& environment = platform.environment;
    environment.home = home;
    environment.realHomeDir = realHome;
    environment.systemTemporaryFolder = temporary;
    environment.tools = {"/tools/ffmpeg", "/tools/ffprobe", "/tools/python3"};
    environment.resolveScriptLib = "/resolve/Modules";
    environment.variable = [this](const std::string& name) -> std::optional<std::string> {
        variablesRead.push_back(name);
        const auto found = variables.find(name);
        return found == variables.end() ? std::nullopt : std::optional(found->second);
    };
    platform.clock = [this] { return now; };
    platform.newUuid = [this] { return "UUID-" + std::to_string(++m_uuids); };
    platform.processes = tools;
    platform.http = services;
    givenNewLaunch(1);
}

void PipelineFixture::givenNewLaunch(std::uint64_t hashSeed) {
    // Every character counts, so that no two texts of the tests share a key.
    platform.textHash = [hashSeed](const std::string& text) {
        std::uint64_t hash = hashSeed;
        for (const char c : text)
            hash = hash * 1099511628211U + static_cast<unsigned char>(c);
        return hash;
    };
    pipeline = LocalPipeline::create(platform);
    watch();
}

void PipelineFixture::watch() {
    auto* watched = pipeline.get();
    QObject::connect(watched, &LocalPipeline::stepChanged, watched,
                     [this, watched] { m_changes.push_back("step " + std::string(rawValue(watched->step()))); });
    QObject::connect(watched, &LocalPipeline::progressChanged, watched,
                     [this, watched] { m_changes.push_back(fmt::format("progress {:.6g}", watched->progress())); });
}

std::string PipelineFixture::givenFile(const std::string& name, const std::string& seconds, std::int16_t amplitude) {
    auto path = disk / ("footage/" + name);
    write(path, "footage");
    tools->probeJson[path] =
        R"({"format": {"duration": ")" + seconds +
        R"("}, "streams": [{"codec_type": "audio", "codec_name": "pcm_s16le", "sample_rate": "48000", "channels": 1}]})";
    tools->durationText[path] = seconds + "\n";
    const auto length = parseDouble(seconds).value_or(0.0);
    constexpr double longestFake = 3600.0;
    if (length > 0.0 && length < longestFake)
        tools->samples[path] = std::vector<std::int16_t>(static_cast<std::size_t>(length * 1000.0), amplitude);
    return path;
}

std::vector<std::string> PipelineFixture::givenFootage() {
    const std::vector<std::string> paths = {givenFile("A.wav", "200.0"), givenFile("B.wav", "150.0", quietAmplitude)};
    tools->durationText[cachePath("extracted_audio.wav")] = "350.0\n";
    tools->durationText[cachePath("chunks/chunk_000.wav")] = "300.0\n";
    tools->durationText[cachePath("chunks/chunk_001.wav")] = "50.0\n";
    return paths;
}

void PipelineFixture::givenServicesAnswer() {
    givenTranscription(R"({"start": 0.0, "end": 10.0, "text": " one two three "},
                          {"start": 100.0, "end": 110.0, "text": "four five"})");
    givenTranscription(R"({"start": 10.0, "end": 20.0, "text": "six"})");
    givenStory(fixtureStory);
    givenWords(R"({"word": "uno", "start": 0.12, "end": 0.5}, {"word": "dos", "start": 0.6, "end": 1.0})");
    givenWords(R"({"word": "tres", "start": 0.25, "end": 0.75})");
}

void PipelineFixture::givenTranscription(const std::string& segments, const std::string& language) {
    services->then(200, R"({"text": "", "language": ")" + language + R"(", "segments": [)" + segments + "]}");
}

void PipelineFixture::givenStory(const std::string& story) {
    services->then(200, messagesAnswer(story));
}

void PipelineFixture::givenWords(const std::string& words) {
    services->then(200, R"({"text": "", "words": [)" + words + "]}");
}

std::vector<std::string> PipelineFixture::givenAFinishedMine() {
    auto footage = givenFootage();
    givenServicesAnswer();
    mine(footage);
    EXPECT_EQ(pipeline->step(), PipelineStep::complete);
    (void)takeChanges();
    return footage;
}

void PipelineFixture::givenExtractedAudio() {
    write(cachePath("extracted_audio.wav"), "sound");
}

void PipelineFixture::mine(std::vector<std::string> paths, MineChoices choices) {
    runToEnd(pipeline->run(std::move(paths), std::move(choices)));
}

std::vector<std::string> PipelineFixture::log() const {
    std::vector<std::string> lines;
    for (const auto& line : pipeline->logs())
        lines.push_back("[" + line.color + "] " + line.text);
    return lines;
}

void PipelineFixture::thenLogHas(const std::string& line) const {
    EXPECT_THAT(log(), testing::Contains(line));
}

void PipelineFixture::thenLogLacks(const std::string& piece) const {
    EXPECT_THAT(log(), testing::Not(testing::Contains(testing::HasSubstr(piece))));
}

bool PipelineFixture::hasLine(const std::string& line) const {
    const auto lines = log();
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

std::vector<std::string> PipelineFixture::takeChanges() {
    return std::exchange(m_changes, {});
}

std::vector<std::string> PipelineFixture::commands() const {
    std::vector<std::string> lines;
    for (auto line : tools->commandLines()) {
        line = replaceAll(line, cachePath(""), "{cache}/");
        line = replaceAll(line, disk / "footage/", "{footage}/");
        line = replaceAll(line, temporary + "/zuvo-" + std::to_string(geteuid()) + "/", "{tmp}/");
        lines.push_back(std::regex_replace(line, std::regex("UUID-[0-9]+"), "{uuid}"));
    }
    return lines;
}

std::vector<std::string> PipelineFixture::temporaryFiles() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(temporary)) {
        if (!entry.is_directory())
            names.push_back(entry.path().filename());
    }
    return names;
}

std::string PipelineFixture::cachePath(const std::string& name) const {
    return home + "/Library/Caches/ZuvoManager/" + name;
}

std::string PipelineFixture::exportsPath(const std::string& name) const {
    return home + "/Library/Application Support/ZuvoManager/exports/" + name;
}

bool PipelineFixture::exists(const std::string& path) {
    return std::filesystem::exists(path);
}

std::string PipelineFixture::read(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << "Cannot read " << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

void PipelineFixture::write(const std::string& path, const std::string& bytes) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream file(path, std::ios::binary);
    file << bytes;
    ASSERT_TRUE(file.flush()) << "Cannot write " << path;
}

void PipelineFixture::makeFolder(const std::string& path) {
    std::filesystem::create_directories(path);
}

std::string uploadBody(const std::string& granularity, const std::string& language, const std::string& fileName,
                       const std::string& sound) {
    const auto field = [](const std::string& name, const std::string& value) {
        return "--UUID-1\r\nContent-Disposition: form-data; name=\"" + name + "\"\r\n\r\n" + value + "\r\n";
    };
    return field("model", "whisper-1") + field("response_format", "verbose_json") +
           field("timestamp_granularities[]", granularity) + field("language", language) +
           "--UUID-1\r\nContent-Disposition: form-data; name=\"file\"; filename=\"" + fileName +
           "\"\r\nContent-Type: audio/wav\r\n\r\n" + sound + "\r\n--UUID-1--\r\n";
}

std::string messagesAnswer(const std::string& replyText) {
    auto block = Json::object();
    block["type"] = "text";
    block["text"] = replyText;
    auto answer = Json::object();
    answer["content"] = Json::array();
    answer["content"].push_back(std::move(block));
    return answer.dump();
}

TranscriptResult transcriptOf(std::vector<TranscriptSegment> lines, std::string language) {
    return {std::move(lines), std::move(language)};
}

MiningResults storyOf(const std::vector<std::pair<double, double>>& times) {
    MiningResults story;
    for (const auto& [start, end] : times) {
        StorySegment segment;
        segment.index = static_cast<std::int64_t>(story.segments.size());
        segment.startTime = start;
        segment.endTime = end;
        segment.sourceClip = "source";
        story.segments.push_back(segment);
    }
    return story;
}

} // namespace zuvo::tests
