#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace zuvo {

/// The coarse state of a run.
enum class PipelineStep {
    idle,
    connecting,
    extracting,
    chunking,
    transcribing,
    analyzing,
    translating, ///< while the selected moments are transcribed at word level
    building,
    complete,
    error,
};

/// The text that the progress page shows for a step, such as "Complete".
[[nodiscard]] std::string_view rawValue(PipelineStep step);

/// The step's own name ("complete"), for programs that read along.
[[nodiscard]] std::string_view caseName(PipelineStep step);

/// The kind of job that the user picks.
enum class MiningMode { fullMine, storyMine, structure, audit };

inline constexpr std::array allMiningModes = {MiningMode::fullMine, MiningMode::storyMine, MiningMode::structure,
                                              MiningMode::audit};

/// The texts of a mode. `color` is the name of a Theme colour.
struct MiningModeTexts {
    std::string_view rawValue;
    std::string_view modeLabel;
    std::string_view subtitle;
    std::string_view description;
    std::string_view color;
};

/// What the pages say of a mode. Lives as long as the program.
[[nodiscard]] const MiningModeTexts& texts(MiningMode mode);

/// The mode with this raw value ("Audit Mine", not its label "Audit"), or nothing.
[[nodiscard]] std::optional<MiningMode> miningModeFromRawValue(std::string_view rawValue);

/// The raw value lower-cased with "-" for each blank: full-mine, story-mine, structure, audit-mine.
[[nodiscard]] std::string commandLineForm(MiningMode mode);

/// Where the media of a mine come from.
enum class SourceMode { files, resolve };

/// "files" or "resolve".
[[nodiscard]] std::string_view rawValue(SourceMode mode);

} // namespace zuvo
