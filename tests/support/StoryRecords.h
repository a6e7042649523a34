#pragma once

#include "model/Media.h"
#include "model/MiningResults.h"

#include <optional>
#include <string>
#include <utility>

namespace zuvo::tests {

/// A segment whose index and translation do not matter; times in seconds of mine time.
inline StorySegment moment(double start, double end, std::string clip, std::string transcript = "",
                           std::optional<std::string> chapter = std::nullopt) {
    return {-1, start, end, std::move(clip), std::move(transcript), "not exported", std::move(chapter)};
}

enum class Streams { sound, video, videoWithSound };

/// A file in /footage; duration in seconds.
inline MediaFileInfo footage(const std::string& filename, double duration, Streams streams,
                             std::optional<std::string> startTimecode = std::nullopt) {
    MediaFileInfo file;
    file.path = "/footage/" + filename;
    file.filename = filename;
    file.duration = duration;
    file.startTimecode = std::move(startTimecode);
    file.hasVideo = streams != Streams::sound;
    file.hasAudio = streams != Streams::video;
    return file;
}

} // namespace zuvo::tests
