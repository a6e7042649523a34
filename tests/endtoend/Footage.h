#pragma once

#include <string>
#include <vector>

namespace zuvo::endtoend {

/// One transcript line in seconds of the audio that was sent.
struct Line {
    double start = 0.0;
    double end = 0.0;
    std::string text;
};

/// Runs the machine's ffmpeg with "-y -v error"; a failure fails the test.
void ffmpeg(const std::vector<std::string>& arguments);

/// Makes a file of a sound whose level climbs in steps and starts again every 12 s, so that a mine can tell its parts:
///
///     level   -49 dB |  -15 dB |              -9 dB               |
///     seconds 0      2         4                                  12
///
/// 300 Hz, one channel, 8000 Hz: as cheap as sound can be. `options` are further output options of ffmpeg, such as a
/// codec or a tag.
void makeFootage(const std::string& path, double seconds = 12.0, const std::vector<std::string>& options = {});

/// Lines on the three steps of that sound: the quiet one, the medium one and the loud one.
[[nodiscard]] std::vector<Line> climbingLines();

/// Seconds of a file as ffprobe measures them.
[[nodiscard]] double measured(const std::string& path);

/// A transcription answer with these lines, and these words for the requests that want words.
[[nodiscard]] std::string transcriptionAnswer(const std::vector<Line>& lines, const std::vector<Line>& words,
                                              const std::string& language = "english");

/// A story in the form that the prompt asks for: the moments in story order, one act over all of them.
[[nodiscard]] std::string storyReply(const std::vector<Line>& moments);

} // namespace zuvo::endtoend
