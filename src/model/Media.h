#pragma once

#include "base/Fields.h"

#include <cstdint>
#include <optional>
#include <string>

namespace zuvo {

/// What ffprobe told about one media file. With `MediaFileInfo` the only record that carries source timecode.
struct ProbeResult {
    std::string path;                           ///< absolute
    std::string filename;                       ///< last path component
    double duration = 0.0;                      ///< seconds; 0 if unknown
    std::optional<std::string> startTimecode;   ///< source timecode of the first sample, "HH:MM:SS:FF"
    std::optional<double> startTimecodeSeconds; ///< the same in seconds, read at 24 frames a second
    std::optional<std::int64_t> sampleRate;     ///< hertz
    std::optional<double> fps;                  ///< frames a second, of the video
    std::optional<std::string> codec;           ///< of the sound, as ffprobe names it
    bool hasVideo = false;
    bool hasAudio = false;
    std::optional<std::int64_t> channels; ///< of the first sound
    std::optional<std::int64_t> bitDepth; ///< bits a sample, of the first sound

    static constexpr auto fields() {
        using S = ProbeResult;
        return std::tuple(Field{"path", &S::path}, Field{"filename", &S::filename}, Field{"duration", &S::duration},
                          Field{"startTimecode", &S::startTimecode},
                          Field{"startTimecodeSeconds", &S::startTimecodeSeconds}, Field{"sampleRate", &S::sampleRate},
                          Field{"fps", &S::fps}, Field{"codec", &S::codec}, Field{"hasVideo", &S::hasVideo},
                          Field{"hasAudio", &S::hasAudio}, Field{"channels", &S::channels},
                          Field{"bitDepth", &S::bitDepth});
    }
};

/// A source file as the exporters see it. The defaults hold for construction in code: JSON must name every field that
/// is no optional.
struct MediaFileInfo {
    std::string path;                         ///< absolute
    std::string filename;                     ///< last path component
    double duration = 0.0;                    ///< seconds
    std::optional<std::string> startTimecode; ///< source timecode of the first sample, "HH:MM:SS:FF"
    double fps = 24.0;                        ///< frames a second
    bool hasVideo = false;
    bool hasAudio = true;
    std::optional<std::string> codec;

    static constexpr auto fields() {
        using S = MediaFileInfo;
        return std::tuple(Field{"path", &S::path}, Field{"filename", &S::filename}, Field{"duration", &S::duration},
                          Field{"startTimecode", &S::startTimecode}, Field{"fps", &S::fps},
                          Field{"hasVideo", &S::hasVideo}, Field{"hasAudio", &S::hasAudio}, Field{"codec", &S::codec});
    }
};

} // namespace zuvo
