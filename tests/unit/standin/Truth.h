#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <fstream>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace zuvo::standin::test {

struct TrueWord {
    std::string word; ///< with its punctuation
    double start = 0.0;
    double end = 0.0;
};

/// The sample's words as its transcript has them, file by file.
inline std::vector<std::vector<TrueWord>> trueWords(const QString& sampleFolder) {
    std::ifstream input(sampleFolder.toStdString() + "/transcript.json");
    const nlohmann::json tree = nlohmann::json::parse(input);
    std::vector<std::vector<TrueWord>> files;
    for (const auto& file : tree.at("files")) {
        files.emplace_back();
        for (const auto& line : file.at("lines"))
            for (const auto& word : line.at("words"))
                files.back().push_back({word.at("word"), word.at("start"), word.at("end")});
    }
    return files;
}

/// Runs ffmpeg; a failure fails the test.
inline void ffmpeg(const QStringList& arguments) {
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(QStringLiteral("ffmpeg"),
                  QStringList{QStringLiteral("-y"), QStringLiteral("-v"), QStringLiteral("error")} + arguments);
    ASSERT_TRUE(process.waitForFinished(60000));
    ASSERT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
}

inline const QStringList& toSpeechWav() {
    static const QStringList arguments{QStringLiteral("-ac"),   QStringLiteral("1"),       QStringLiteral("-ar"),
                                       QStringLiteral("16000"), QStringLiteral("-acodec"), QStringLiteral("pcm_s16le")};
    return arguments;
}

/// The sample's files of those numbers (1 or 2) joined into one 16 kHz mono WAV.
inline QString joinedSample(const QTemporaryDir& folder, const QString& sampleFolder, const std::vector<int>& numbers) {
    std::string list;
    for (const int number : numbers)
        list += "file '" + sampleFolder.toStdString() + "/harbour_interview_0" + std::to_string(number) + ".m4a'\n";
    std::ofstream(folder.filePath(QStringLiteral("list.txt")).toStdString()) << list;
    const QString result = folder.filePath(QStringLiteral("joined.wav"));
    ffmpeg(QStringList{QStringLiteral("-f"), QStringLiteral("concat"), QStringLiteral("-safe"), QStringLiteral("0"),
                       QStringLiteral("-i"), folder.filePath(QStringLiteral("list.txt"))} +
           toSpeechWav() + QStringList{result});
    return result;
}

inline QString cut(const QTemporaryDir& folder, const QString& source, double start, double length) {
    const QString result = folder.filePath(QStringLiteral("cut.wav"));
    ffmpeg(QStringList{QStringLiteral("-i"), source, QStringLiteral("-ss"), QString::number(start),
                       QStringLiteral("-t"), QString::number(length)} +
           toSpeechWav() + QStringList{result});
    return result;
}

inline std::string bytesOf(const QString& path) {
    std::ifstream input(path.toStdString(), std::ios::binary);
    return {std::istreambuf_iterator<char>(input), std::istreambuf_iterator<char>()};
}

} // namespace zuvo::standin::test
