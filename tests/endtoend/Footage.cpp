#include "endtoend/Footage.h"

#include "fakes/TemporaryFolder.h"
#include "platform/Environment.h"

#include <QProcess>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace zuvo::endtoend {

namespace {

std::string runTool(const std::string& tool, const std::vector<std::string>& arguments) {
    QStringList words;
    for (const auto& argument : arguments)
        words.append(QString::fromStdString(argument));
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(QString::fromStdString(fixedToolPath(tool)), words);
    constexpr int limitMs = 60'000;
    EXPECT_TRUE(process.waitForFinished(limitMs));
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
    return process.readAllStandardOutput().toStdString();
}

} // namespace

void ffmpeg(const std::vector<std::string>& arguments) {
    std::vector<std::string> all = {"-y", "-v", "error"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    runTool("ffmpeg", all);
}

namespace {

/// One period of the climbing sound, made once in a process: the generator costs more than a copy.
const std::string& onePeriod() {
    static const tests::TemporaryFolder folder;
    static const std::string path = [] {
        auto made = folder / "period.wav";
        ffmpeg({"-f", "lavfi", "-i", "aevalsrc='sin(2*PI*300*t)*if(lt(t,2),0.005,if(lt(t,4),0.25,0.5))':s=8000:d=12",
                made});
        return made;
    }();
    return path;
}

} // namespace

std::vector<Line> climbingLines() {
    return {{0.0, 2.0, "Quiet."}, {2.0, 4.0, "Nearer."}, {4.0, 12.0, "Here I am, close and clear."}};
}

void makeFootage(const std::string& path, double seconds, const std::vector<std::string>& options) {
    std::vector<std::string> arguments = {"-stream_loop", "-1", "-i", onePeriod(), "-t", fmt::format("{}", seconds)};
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.push_back(path);
    ffmpeg(arguments);
}

double measured(const std::string& path) {
    return std::stod(
        runTool("ffprobe", {"-v", "error", "-show_entries", "format=duration", "-of", "default=nw=1:nk=1", path}));
}

std::string transcriptionAnswer(const std::vector<Line>& lines, const std::vector<Line>& words,
                                const std::string& language) {
    nlohmann::json answer = {{"task", "transcribe"}, {"text", "all of it"}, {"language", language}};
    answer["segments"] = nlohmann::json::array();
    for (const auto& line : lines)
        answer["segments"].push_back({{"start", line.start}, {"end", line.end}, {"text", " " + line.text + " "}});
    answer["words"] = nlohmann::json::array();
    for (const auto& word : words)
        answer["words"].push_back({{"word", word.text}, {"start", word.start}, {"end", word.end}});
    return answer.dump();
}

std::string storyReply(const std::vector<Line>& moments) {
    nlohmann::json story = {{"segments", nlohmann::json::array()}, {"subtitles", nlohmann::json::array()}};
    std::vector<int> numbers;
    double total = 0.0;
    for (const auto& moment : moments) {
        const int index = static_cast<int>(numbers.size());
        story["segments"].push_back({{"index", index},
                                     {"startTime", moment.start},
                                     {"endTime", moment.end},
                                     {"sourceClip", "source"},
                                     {"transcript", moment.text},
                                     {"translation", moment.text},
                                     {"chapter", "Chapter " + std::to_string(index + 1)}});
        numbers.push_back(index);
        total += moment.end - moment.start;
    }
    story["structure"] = {{"acts", {{{"name", "Act 1: All"}, {"segments", numbers}}}}, {"totalDuration", total}};
    story["estimatedDuration"] = total;
    return story.dump();
}

} // namespace zuvo::endtoend
