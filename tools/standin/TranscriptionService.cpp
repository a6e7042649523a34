#include "standin/TranscriptionService.h"

#include "base/Json.h"
#include "base/Text.h"
#include "standin/Listener.h"
#include "standin/MultipartReader.h"
#include "standin/WavReader.h"

#include <cmath>

namespace zuvo::standin {
namespace {

constexpr std::string_view invalidRequest = "invalid_request_error";
constexpr std::string_view heardLanguage = "english"; // what is reported when no language was asked for

struct Form {
    std::string model;
    std::string responseFormat = "json";
    std::string language;
    bool segments = false;
    bool words = false;
    std::optional<std::string_view> file;
};

/// Nothing if a field has a value that the service does not know.
std::optional<Form> readForm(const std::vector<FormPart>& parts) {
    Form form;
    for (const FormPart& part : parts) {
        if (part.name == "model")
            form.model = part.data;
        else if (part.name == "response_format")
            form.responseFormat = part.data;
        else if (part.name == "language")
            form.language = part.data;
        else if (part.name == "file" && part.fileName)
            form.file = part.data;
        else if (part.name == "timestamp_granularities[]" && part.data == "segment")
            form.segments = true;
        else if (part.name == "timestamp_granularities[]" && part.data == "word")
            form.words = true;
        else if (part.name == "timestamp_granularities[]")
            return std::nullopt;
    }
    if (!form.segments && !form.words)
        form.segments = true;
    return form.responseFormat == "verbose_json" || form.responseFormat == "json" ? std::optional(form) : std::nullopt;
}

double milliseconds(double seconds) {
    return std::round(seconds * 1000.0) / 1000.0;
}

/// Words are reported bare: punctuation belongs to the text.
std::string bareWord(std::string_view word) {
    constexpr std::string_view punctuation = ".,;:!?\"()";
    const std::size_t first = word.find_first_not_of(punctuation);
    if (first == std::string_view::npos)
        return std::string(word);
    return std::string(word.substr(first, word.find_last_not_of(punctuation) - first + 1));
}

OrderedJson segmentsOf(const std::vector<HeardLine>& lines) {
    OrderedJson segments = OrderedJson::array();
    for (const HeardLine& line : lines) {
        OrderedJson segment;
        segment["id"] = segments.size();
        segment["seek"] = 0;
        segment["start"] = milliseconds(line.start);
        segment["end"] = milliseconds(line.end);
        segment["text"] = " " + line.text; // the real one begins every segment's text with a blank
        segment["tokens"] = OrderedJson::array();
        segment["temperature"] = 0.0;
        segments.push_back(std::move(segment));
    }
    return segments;
}

OrderedJson wordsOf(const std::vector<HeardLine>& lines) {
    OrderedJson words = OrderedJson::array();
    for (const HeardLine& line : lines) {
        for (const HeardWord& heard : line.words) {
            OrderedJson word;
            word["word"] = bareWord(heard.word);
            word["start"] = milliseconds(heard.start);
            word["end"] = milliseconds(heard.end);
            words.push_back(std::move(word));
        }
    }
    return words;
}

Answer describe(const Form& form, const Sound& sound, const std::vector<HeardLine>& lines) {
    std::vector<std::string> texts;
    for (const HeardLine& line : lines)
        texts.push_back(line.text);
    OrderedJson tree;
    if (form.responseFormat == "verbose_json") {
        tree["task"] = "transcribe";
        tree["language"] = form.language.empty() ? std::string(heardLanguage) : form.language;
        tree["duration"] = milliseconds(sound.duration());
    }
    tree["text"] = join(texts, " ");
    if (form.responseFormat == "verbose_json" && form.segments)
        tree["segments"] = segmentsOf(lines);
    if (form.responseFormat == "verbose_json" && form.words)
        tree["words"] = wordsOf(lines);
    return {200, compactText(tree).value_or("{}")};
}

} // namespace

Answer transcriptionError(int status, std::string_view type, std::string_view message) {
    OrderedJson tree;
    tree["error"]["message"] = message;
    tree["error"]["type"] = type;
    tree["error"]["param"] = nullptr;
    tree["error"]["code"] = nullptr;
    return {status, compactText(tree).value_or("{}")};
}

Answer answerTranscription(const RecordedRequest& request, const SampleKnowledge& sample) {
    constexpr std::string_view scheme = "Bearer ";
    if (request.method != "POST")
        return transcriptionError(405, invalidRequest, "Only POST requests are accepted here.");
    const std::string authorization = request.header("Authorization");
    if (authorization.rfind(scheme, 0) != 0 || trimBlanks(authorization.substr(scheme.size())).empty())
        return transcriptionError(401, invalidRequest, "You didn't provide an API key.");
    const auto parts = readMultipart(request.header("Content-Type"), request.body);
    if (!parts)
        return transcriptionError(400, invalidRequest, "The body is no readable multipart form.");
    const auto form = readForm(*parts);
    if (!form)
        return transcriptionError(400, invalidRequest, "Unknown response_format or timestamp granularity.");
    if (form->model.empty())
        return transcriptionError(400, invalidRequest, "You must provide a model.");
    const auto sound = form->file ? readWav(*form->file) : std::nullopt;
    if (!sound)
        return transcriptionError(400, invalidRequest, "Invalid file format: a WAV file is expected.");
    return describe(*form, *sound, listen(sample, *sound));
}

} // namespace zuvo::standin
