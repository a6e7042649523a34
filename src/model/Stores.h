#pragma once

#include "model/MiningResults.h"
#include "model/Transcript.h"

namespace zuvo {

// The top levels of transcript.json and project.json. `createdAt` is seconds since 1970 at the time of writing.

/// A transcript line as both files keep it: the language stands once, at the top of the file.
struct CachedSegment {
    double start = 0.0; ///< seconds in mine time
    double end = 0.0;   ///< seconds in mine time
    std::string text;

    static constexpr auto fields() {
        using S = CachedSegment;
        return std::tuple(Field{"start", &S::start}, Field{"end", &S::end}, Field{"text", &S::text});
    }
};

/// transcript.json: what was paid for at the transcription service.
struct CachedTranscript {
    std::string language;
    std::vector<CachedSegment> segments;
    std::vector<std::string> mediaPaths; ///< in the caller's order
    double createdAt = 0.0;

    static constexpr auto fields() {
        using S = CachedTranscript;
        return std::tuple(Field{"language", &S::language}, Field{"segments", &S::segments},
                          Field{"mediaPaths", &S::mediaPaths}, Field{"createdAt", &S::createdAt});
    }
};

/// project.json: a finished mine, to be told anew in another style.
struct SavedProject {
    std::string timeline; ///< the run's name, also the name of the project's folder
    double createdAt = 0.0;
    std::string language;
    std::vector<std::string> mediaPaths;
    std::vector<CachedSegment> transcript;
    std::optional<MiningResults> results; ///< the story at the time of saving
    std::optional<std::string> presetId;
    double targetMinutes = 0.0; ///< length that the story was asked for

    /// "{timeline}_{whole seconds of createdAt}"
    [[nodiscard]] std::string id() const;

    static constexpr auto fields() {
        using S = SavedProject;
        return std::tuple(Field{"timeline", &S::timeline}, Field{"createdAt", &S::createdAt},
                          Field{"language", &S::language}, Field{"mediaPaths", &S::mediaPaths},
                          Field{"transcript", &S::transcript}, Field{"results", &S::results},
                          Field{"presetId", &S::presetId}, Field{"targetMinutes", &S::targetMinutes});
    }
};

/// Without the per-line language.
[[nodiscard]] std::vector<CachedSegment> cachedSegments(const TranscriptResult& transcript);

/// Every line gets the one language.
[[nodiscard]] TranscriptResult transcriptFrom(const std::vector<CachedSegment>& segments, const std::string& language);

} // namespace zuvo
