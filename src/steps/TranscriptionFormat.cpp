#include "steps/TranscriptionFormat.h"

#include "base/Text.h"

namespace zuvo {

// The body of a request:
//
//     --{boundary}\r\n
//     Content-Disposition: form-data; name="{field}"\r\n
//     \r\n
//     {value}\r\n                                              one for each field
//     --{boundary}\r\n
//     Content-Disposition: form-data; name="file"; filename="{file name}"\r\n
//     Content-Type: audio/wav\r\n
//     \r\n
//     {the file's bytes}
//     \r\n--{boundary}--\r\n

namespace {

/// Stands for "let the service find out": no language is sent.
constexpr std::string_view automaticLanguage = "auto";

std::string fieldPart(const std::string& boundary, const std::string& name, const std::string& value) {
    return "--" + boundary + "\r\nContent-Disposition: form-data; name=\"" + name + "\"\r\n\r\n" + value + "\r\n";
}

std::optional<WhisperWord> timedWord(const Json& element) {
    auto word = readText(element, "word");
    const auto start = readNumber(element, "start");
    const auto end = readNumber(element, "end");
    if (!word || !start || !end)
        return std::nullopt;
    return WhisperWord{std::move(*word), *start, *end};
}

OrderedJson wordJson(const WordTimestamp& word) {
    auto json = OrderedJson::object();
    json["word"] = word.word;
    json["start"] = word.start;
    json["end"] = word.end;
    return json;
}

OrderedJson wordSegmentJson(const WordSegment& segment) {
    auto words = OrderedJson::array();
    for (const auto& word : segment.words)
        words.push_back(wordJson(word));
    auto json = OrderedJson::object();
    json["segmentIndex"] = segment.segmentIndex;
    json["words"] = std::move(words);
    return json;
}

} // namespace

MultipartFrame transcriptionFrame(const std::string& boundary, TimestampGranularity granularity,
                                  const std::string& language, const std::string& fileName) {
    MultipartFrame frame;
    frame.head = fieldPart(boundary, "model", "whisper-1");
    frame.head += fieldPart(boundary, "response_format", "verbose_json");
    frame.head += fieldPart(boundary, "timestamp_granularities[]",
                            granularity == TimestampGranularity::word ? "word" : "segment");
    if (language != automaticLanguage)
        frame.head += fieldPart(boundary, "language", language);
    frame.head += "--" + boundary + "\r\nContent-Disposition: form-data; name=\"file\"; filename=\"" + fileName +
                  "\"\r\nContent-Type: audio/wav\r\n\r\n";
    frame.tail = "\r\n--" + boundary + "--\r\n";
    return frame;
}

std::string multipartContentType(const std::string& boundary) {
    return "multipart/form-data; boundary=" + boundary;
}

Decoded<WhisperResponse> decodeTranscription(std::string_view body) {
    return decodeRecordText<WhisperResponse>(body);
}

std::optional<std::vector<WhisperWord>> readTimedWords(std::string_view body) {
    const auto answer = parseForeignJson(body);
    if (!answer || !answer->is_object())
        return std::nullopt;
    const auto list = answer->find("words");
    if (list == answer->end() || !list->is_array())
        return std::nullopt;
    std::vector<WhisperWord> words;
    for (const auto& element : *list) {
        if (auto word = timedWord(element))
            words.push_back(std::move(*word));
    }
    return words;
}

std::vector<TranscriptSegment> chunkLines(const WhisperResponse& response, double timeOffset) {
    auto lines = response.asTranscriptSegments();
    for (auto& line : lines) {
        line.start += timeOffset;
        line.end += timeOffset;
        line.text = trimWhiteSpace(line.text);
    }
    return lines;
}

std::optional<std::string> wordTimestampsText(const std::vector<WordSegment>& segments) {
    auto list = OrderedJson::array();
    for (const auto& segment : segments)
        list.push_back(wordSegmentJson(segment));
    return compactText(list);
}

std::size_t wordCount(const std::vector<TranscriptSegment>& lines) {
    std::size_t count = 0;
    for (const auto& line : lines)
        count += splitAtBlanks(line.text).size();
    return count;
}

} // namespace zuvo
