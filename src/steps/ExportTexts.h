#pragma once

#include "model/MiningResults.h"
#include "model/Transcript.h"

#include <string>
#include <vector>

namespace zuvo {

// The text files of the export folder.

/// "M:SS", truncated; no hour field.
[[nodiscard]] std::string formatTimestamp(double seconds);

/// "HH:MM:SS,mmm", milliseconds truncated.
[[nodiscard]] std::string srtTime(double seconds);

/// subtitles.srt: cards timed on the finished cut, in which the segments lie end to end in story order.
///
///     mine time   ...[ segment 0 ]......[ segment 1 ]...
///     the cut     [ segment 0 ][ segment 1 ]
///
/// Where words are known the cards follow the voice, with the display text spread over the spoken words; elsewhere
/// they are spread evenly.
[[nodiscard]] std::string subtitlesText(const std::vector<StorySegment>& segments,
                                        const std::vector<WordSegment>& wordSegments);

/// transcript.txt, in mine time.
[[nodiscard]] std::string transcriptText(const TranscriptResult& transcript);

/// story_brief.md, times in mine time. `date` is the present in the platform's default text form.
[[nodiscard]] std::string storyBriefText(const std::string& timeline, const MiningResults& analysis,
                                         const std::string& date);

} // namespace zuvo
