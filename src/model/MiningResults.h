#pragma once

#include "base/Fields.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zuvo {

// The outcome of story analysis. All times are seconds in mine time: the sources laid end to end without gaps, the
// first second of the first source being 0.

/// One selected moment. A record to be replaced whole: an edit builds a new one. It has no operator==, since two
/// moments are told apart by `index` alone.
struct StorySegment {
    std::int64_t index = 0;             ///< its number; `Act::segments` and word timestamps refer to it
    double startTime = 0.0;             ///< seconds in mine time
    double endTime = 0.0;               ///< seconds in mine time; the moment ends before it
    std::string sourceClip;             ///< file name of the source that holds the moment
    std::string transcript;             ///< what is said, in the spoken language
    std::string translation;            ///< in English; may be empty
    std::optional<std::string> chapter; ///< title of the chapter that the moment belongs to

    [[nodiscard]] std::int64_t id() const { return index; }

    static constexpr auto fields() {
        using S = StorySegment;
        return std::tuple(Field{"index", &S::index}, Field{"startTime", &S::startTime}, Field{"endTime", &S::endTime},
                          Field{"sourceClip", &S::sourceClip}, Field{"transcript", &S::transcript},
                          Field{"translation", &S::translation}, Field{"chapter", &S::chapter});
    }
};

/// A subtitle card as the analysis gave it.
struct Subtitle {
    double startTime = 0.0; ///< seconds in mine time
    double endTime = 0.0;   ///< seconds in mine time
    std::string text;

    /// "{startTime}-{endTime}": two cards with the same times have one identity.
    [[nodiscard]] std::string id() const;

    static constexpr auto fields() {
        using S = Subtitle;
        return std::tuple(Field{"startTime", &S::startTime}, Field{"endTime", &S::endTime}, Field{"text", &S::text});
    }
};

/// An act names the moments that belong to it. Nothing checks that a named moment exists.
struct Act {
    std::string name;
    std::vector<std::int64_t> segments; ///< each a `StorySegment::index`

    [[nodiscard]] std::string id() const { return name; }

    static constexpr auto fields() { return std::tuple(Field{"name", &Act::name}, Field{"segments", &Act::segments}); }
};

/// How the moments make a story.
struct StoryStructure {
    std::vector<Act> acts;
    double totalDuration = 0.0; ///< seconds, as the analysis stated it

    static constexpr auto fields() {
        using S = StoryStructure;
        return std::tuple(Field{"acts", &S::acts}, Field{"totalDuration", &S::totalDuration});
    }
};

/// The story: the central record of the system.
struct MiningResults {
    std::vector<StorySegment> segments; ///< in story order
    StoryStructure structure;
    std::vector<Subtitle> subtitles;
    double estimatedDuration = 0.0; ///< seconds, as the analysis estimated it

    static constexpr auto fields() {
        using S = MiningResults;
        return std::tuple(Field{"segments", &S::segments}, Field{"structure", &S::structure},
                          Field{"subtitles", &S::subtitles}, Field{"estimatedDuration", &S::estimatedDuration});
    }
};

} // namespace zuvo
