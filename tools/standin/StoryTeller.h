#pragma once

#include "base/Json.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zuvo::standin {

enum class Loudness { loud, medium, quiet };

/// A line of the annotated transcript in a prompt; seconds on the transcript's time line, end not included.
struct AnnotatedLine {
    double start = 0.0;
    double end = 0.0;
    Loudness loudness = Loudness::quiet;
    std::string text;
};

/// What a story prompt asks for.
struct StoryRequest {
    double targetSeconds = 0.0;
    std::vector<AnnotatedLine> lines;
};

/// Reads lines such as `[125.5-131.2s] 🔊 And that was the winter we lost the boat.` and the target from
/// `Target edit: 5 min (300s)`. Nothing if either is missing: then it is no prompt for a story.
[[nodiscard]] std::optional<StoryRequest> readStoryPrompt(std::string_view prompt);

/// A passage of neighbouring loud lines of 8 to 30 s.
struct Passage {
    double start = 0.0;
    double end = 0.0;
    std::vector<AnnotatedLine> lines;
};

/// All passages that the transcript offers, in order of time.
///
///     lines      🔊🔊🔊🔇🔉🔊🔊🔊🔊🔊🔊🔊🔊🔉🔊
///     passages   |--A--|    |---B---||---C---|          the last line alone is shorter than 8 s
[[nodiscard]] std::vector<Passage> findPassages(const std::vector<AnnotatedLine>& lines);

/// The longest passages that together do not exceed the target, in order of time. One that would is shortened by whole
/// lines from its end, or left out.
[[nodiscard]] std::vector<Passage> choosePassages(std::vector<Passage> passages, double targetSeconds);

/// The reply to a story prompt: segments, structure in up to three acts, subtitles, estimatedDuration. Chapters are
/// named after the passage's most telling word. Nothing is translated: the translation repeats the text.
[[nodiscard]] OrderedJson tellStory(const StoryRequest& request);

} // namespace zuvo::standin
