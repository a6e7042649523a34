#pragma once

#include "model/AuditReport.h"
#include "model/Transcript.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zuvo {

// What a cut uses of the footage, for the audit: from the clips of a timeline to a transcript with a mark per line.

/// One clip as read from a Resolve timeline.
struct TimelineClip {
    std::string sourceFile;      ///< absolute path
    std::int64_t startFrame = 0; ///< position on the timeline, its start offset included; not in the source
    std::int64_t endFrame = 0;   ///< the same; not included
    double duration = 0.0;       ///< seconds
};

/// The clips in a script's answer, a JSON list of objects. Objects that lack a part of a clip are dropped; nothing if
/// the text is no such list.
[[nodiscard]] std::optional<std::vector<TimelineClip>> timelineClipsOf(std::string_view json);

/// Places clips in mine time by estimate: files in the order of their paths, each taken to be 300 s long whatever it
/// is, and 24 frames to the second whatever the timeline's rate is. Clips of other files are left out. The texts stay
/// empty.
///
///     files      A.wav                     B.wav
///     mine time  0                         300                       600
///     B.wav at the frames 48 to 72              |=| 302 to 303
[[nodiscard]] std::vector<UsedSegment> mapTimelineClipsToTranscript(const std::vector<TimelineClip>& clips,
                                                                    std::vector<std::string> mediaPaths);

/// How much of the footage a cut uses. Overlaps count twice, so the share can exceed 100.
struct Coverage {
    double usedSeconds = 0.0;
    double totalSeconds = 1.0; ///< end of the last transcript line, or 1.0 without lines
    double percent = 0.0;
};

/// Of the whole transcript, whose last line's end is the length of the footage.
[[nodiscard]] Coverage coverageOf(const std::vector<UsedSegment>& used, const std::vector<TranscriptSegment>& lines);

/// One line "[USED] [0.0s → 5.2s] {text}" or "[UNUSED] ..." for each transcript line, each with its line end. A line is
/// used if it lies wholly inside one used range.
[[nodiscard]] std::string markedTranscript(const std::vector<TranscriptSegment>& lines,
                                           const std::vector<UsedSegment>& used);

/// The whole instruction for the audit, filled in one pass, ending in a closing brace with nothing behind it.
/// `transcript` is of `markedTranscript`.
[[nodiscard]] std::string auditPrompt(std::size_t clipCount, const Coverage& coverage, const std::string& transcript);

} // namespace zuvo
