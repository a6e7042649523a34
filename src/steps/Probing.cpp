#include "steps/Probing.h"

#include "base/Json.h"
#include "base/Numbers.h"
#include "base/Paths.h"
#include "base/Text.h"

#include <array>
#include <cmath>
#include <fmt/format.h>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace zuvo {

namespace {

/// The rate by which start timecodes count their frames, whatever the file's own rate: that rate is not known yet when
/// the timecode is read, and everything behind relies on the one value.
constexpr double timecodeFps = 24.0;

constexpr std::int64_t secondsPerMinute = 60;
constexpr std::int64_t secondsPerHour = 3600;

/// Sample formats as codec names spell them; the first that occurs in the name counts.
constexpr std::array<std::pair<std::string_view, std::int64_t>, 3> codecBitDepths = {{
    {"s24", 24},
    {"s16", 16},
    {"s32", 32},
}};

/// The value of `key`, or null where there is none, so that look-ups can be chained.
const Json& child(const Json& object, const char* key) {
    static const Json none;
    if (!object.is_object())
        return none;
    const auto found = object.find(key);
    return found == object.end() ? none : *found;
}

/// ffprobe writes most of its numbers as texts.
std::optional<double> readDoubleText(const Json& object, const char* key) {
    const auto text = readText(object, key);
    return text ? parseDouble(*text) : std::nullopt;
}

std::optional<std::int64_t> readIntegerText(const Json& object, const char* key) {
    const auto text = readText(object, key);
    return text ? parseInteger(*text) : std::nullopt;
}

/// Nothing unless the divisor is above zero and the quotient a finite number: an infinity could not be written to the
/// probe file, which would cost the other files of the run theirs.
std::optional<double> quotient(double dividend, double divisor) {
    if (!(divisor > 0.0) || !std::isfinite(dividend / divisor))
        return std::nullopt;
    return dividend / divisor;
}

void readStartTimecode(const Json& tags, const std::vector<const Json*>& streams, ProbeResult& result) {
    if (auto timecode = readText(tags, "timecode")) {
        result.startTimecodeSeconds = timecodeToSeconds(*timecode, timecodeFps);
        result.startTimecode = std::move(timecode);
        return;
    }
    const auto sampleCount = readDoubleText(tags, "time_reference");
    if (!sampleCount || streams.empty())
        return;
    const auto rate = readDoubleText(*streams.front(), "sample_rate");
    result.startTimecodeSeconds = rate ? quotient(*sampleCount, *rate) : std::nullopt;
    if (result.startTimecodeSeconds)
        result.startTimecode = secondsToTimecode(*result.startTimecodeSeconds, timecodeFps);
}

std::optional<double> frameRate(const Json& stream) {
    const auto text = readText(stream, "r_frame_rate");
    if (!text)
        return std::nullopt;
    const auto parts = split(*text, '/');
    if (parts.size() != 2)
        return std::nullopt;
    const auto frames = parseDouble(parts[0]);
    const auto seconds = parseDouble(parts[1]);
    return frames && seconds ? quotient(*frames, *seconds) : std::nullopt;
}

std::optional<std::int64_t> bitDepthOf(const Json& stream) {
    if (const auto stated = readInteger(stream, "bits_per_sample"))
        return stated;
    const auto codec = readText(stream, "codec_name").value_or("");
    for (const auto& [format, depth] : codecBitDepths) {
        if (codec.find(format) != std::string::npos)
            return depth;
    }
    return std::nullopt;
}

template <class Value>
void fillIfEmpty(std::optional<Value>& field, std::optional<Value> value) {
    if (!field)
        field = std::move(value);
}

void readStream(const Json& stream, ProbeResult& result) {
    const auto type = readText(stream, "codec_type");
    if (type == "video") {
        result.hasVideo = true;
        // The last video stream with a rate wins, unlike the audio fields below.
        if (const auto fps = frameRate(stream))
            result.fps = fps;
    } else if (type == "audio") {
        result.hasAudio = true;
        fillIfEmpty(result.codec, readText(stream, "codec_name"));
        fillIfEmpty(result.sampleRate, readIntegerText(stream, "sample_rate"));
        fillIfEmpty(result.channels, readInteger(stream, "channels"));
        fillIfEmpty(result.bitDepth, bitDepthOf(stream));
    }
}

template <class Value>
Json orNull(const Value& value) {
    return value;
}
template <class Value>
Json orNull(const std::optional<Value>& value) {
    return value ? Json(*value) : Json(nullptr);
}

Json cacheEntry(const ProbeResult& result) {
    auto entry = Json::object();
    std::apply([&](auto... field) { ((entry[field.key] = orNull(result.*(field.member))), ...); },
               ProbeResult::fields());
    return entry;
}

} // namespace

std::optional<ProbeResult> probeResultFrom(const std::string& path, std::string_view ffprobeOutput) {
    const auto output = parseForeignJson(ffprobeOutput);
    if (!output || !output->is_object())
        return std::nullopt;
    const auto& format = child(*output, "format");
    const auto streams = readObjects(*output, "streams").value_or(std::vector<const Json*>{});

    ProbeResult result;
    result.path = path;
    result.filename = lastPathComponent(path);
    result.duration = readDoubleText(format, "duration").value_or(0.0);
    readStartTimecode(child(format, "tags"), streams, result);
    for (const auto* stream : streams)
        readStream(*stream, result);
    return result;
}

std::optional<std::string> probeCacheText(const ProbeResults& results) {
    auto file = Json::object();
    for (const auto& [filename, result] : results)
        file[filename] = cacheEntry(result);
    return prettySortedText(file);
}

std::string probeLogLine(const ProbeResult& result) {
    const auto rate = result.sampleRate ? fmt::format("{}Hz", *result.sampleRate) : std::string("unknown");
    return fmt::format("  {}: {}, TC: {}, {}", result.filename, formatDuration(result.duration),
                       result.startTimecode.value_or("none"), rate);
}

double timecodeToSeconds(std::string_view timecode, double fps) {
    const auto text = replaceAll(timecode, ";", ":");
    const auto parts = split(text, ':');
    if (parts.size() != 4)
        return 0.0;
    std::array<double, 4> values{};
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const auto value = parseDouble(parts[i]);
        if (!value)
            return 0.0;
        values[i] = *value;
    }
    const auto [hours, minutes, seconds, frames] = values;
    const double total = hours * 3600.0 + minutes * 60.0 + seconds + frames / fps;
    return std::isfinite(total) ? total : 0.0;
}

std::string secondsToTimecode(double seconds, double fps) {
    const auto whole = truncated(seconds);
    const auto frames = truncated((seconds - static_cast<double>(whole)) * fps);
    return fmt::format("{:02d}:{:02d}:{:02d}:{:02d}", whole / secondsPerHour, whole % secondsPerHour / secondsPerMinute,
                       whole % secondsPerMinute, frames);
}

std::string formatDuration(double seconds) {
    const auto whole = truncated(seconds);
    return fmt::format("{}:{:02d}", whole / secondsPerMinute, whole % secondsPerMinute);
}

} // namespace zuvo
