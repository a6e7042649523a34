#include "model/Modes.h"

#include <algorithm>

namespace zuvo {

namespace {

constexpr MiningModeTexts fullMineTexts = {
    "Full Mine", "Full Mine", "Transcribe → Analyze → Translate → Subtitle → Timeline",
    "Extract audio → transcribe → analyze → translate → build timeline", "accent"};
constexpr MiningModeTexts storyMineTexts = {"Story Mine", "Story Mine", "Existing transcript → Analyze → Build",
                                            "Use existing transcript → analyze → build", "gemSapphire"};
constexpr MiningModeTexts structureTexts = {"Structure", "Structure", "Your selects → Organize → Subtitle",
                                            "Organize marked selects → subtitle", "gemEmerald"};
constexpr MiningModeTexts auditTexts = {
    "Audit Mine", "Audit", "Existing timeline → Compare to transcript → Find buried gold",
    "Compare existing timeline to full transcripts → find buried gold", "gemAmethyst"};

} // namespace

std::string_view rawValue(PipelineStep step) {
    switch (step) {
    case PipelineStep::idle:
        return "Idle";
    case PipelineStep::connecting:
        return "Connecting to Resolve...";
    case PipelineStep::extracting:
        return "Extracting audio...";
    case PipelineStep::chunking:
        return "Preparing audio chunks...";
    case PipelineStep::transcribing:
        return "Transcribing with Whisper...";
    case PipelineStep::analyzing:
        return "Analyzing story structure...";
    case PipelineStep::translating:
        return "Translating...";
    case PipelineStep::building:
        return "Building timeline...";
    case PipelineStep::complete:
        return "Complete";
    case PipelineStep::error:
        break;
    }
    return "Error";
}

std::string_view caseName(PipelineStep step) {
    switch (step) {
    case PipelineStep::idle:
        return "idle";
    case PipelineStep::connecting:
        return "connecting";
    case PipelineStep::extracting:
        return "extracting";
    case PipelineStep::chunking:
        return "chunking";
    case PipelineStep::transcribing:
        return "transcribing";
    case PipelineStep::analyzing:
        return "analyzing";
    case PipelineStep::translating:
        return "translating";
    case PipelineStep::building:
        return "building";
    case PipelineStep::complete:
        return "complete";
    case PipelineStep::error:
        break;
    }
    return "error";
}

const MiningModeTexts& texts(MiningMode mode) {
    switch (mode) {
    case MiningMode::fullMine:
        return fullMineTexts;
    case MiningMode::storyMine:
        return storyMineTexts;
    case MiningMode::structure:
        return structureTexts;
    case MiningMode::audit:
        break;
    }
    return auditTexts;
}

std::optional<MiningMode> miningModeFromRawValue(std::string_view rawValue) {
    const auto* const found = std::find_if(allMiningModes.begin(), allMiningModes.end(),
                                           [rawValue](MiningMode mode) { return texts(mode).rawValue == rawValue; });
    if (found == allMiningModes.end())
        return std::nullopt;
    return *found;
}

std::string commandLineForm(MiningMode mode) {
    std::string form(texts(mode).rawValue);
    for (char& c : form) {
        if (c == ' ')
            c = '-';
        else if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    }
    return form;
}

std::string_view rawValue(SourceMode mode) {
    return mode == SourceMode::files ? "files" : "resolve";
}

} // namespace zuvo
