#pragma once

#include "base/Fields.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zuvo {

// The outcome of an audit of an existing cut. All times are seconds in mine time.

/// A part of the transcript that the cut uses.
struct UsedSegment {
    double startTime = 0.0;
    double endTime = 0.0;
    std::string text;

    [[nodiscard]] std::string id() const; ///< "{startTime}-{endTime}"

    static constexpr auto fields() {
        using S = UsedSegment;
        return std::tuple(Field{"startTime", &S::startTime}, Field{"endTime", &S::endTime}, Field{"text", &S::text});
    }
};

/// A strong moment left out of the cut.
struct GoldMoment {
    double startTime = 0.0;
    double endTime = 0.0;
    std::string text;
    std::string reason;
    std::int64_t emotionalWeight = 0; ///< 1 to 5, shown as stars

    [[nodiscard]] std::string id() const; ///< "{startTime}-{endTime}"

    static constexpr auto fields() {
        using S = GoldMoment;
        return std::tuple(Field{"startTime", &S::startTime}, Field{"endTime", &S::endTime}, Field{"text", &S::text},
                          Field{"reason", &S::reason}, Field{"emotionalWeight", &S::emotionalWeight});
    }
};

/// Two passages that say the same.
struct Redundancy {
    double firstStart = 0.0;
    double firstEnd = 0.0;
    double secondStart = 0.0;
    double secondEnd = 0.0;
    std::string topic;

    [[nodiscard]] std::string id() const; ///< "{firstStart}-{secondStart}"

    static constexpr auto fields() {
        using S = Redundancy;
        return std::tuple(Field{"firstStart", &S::firstStart}, Field{"firstEnd", &S::firstEnd},
                          Field{"secondStart", &S::secondStart}, Field{"secondEnd", &S::secondEnd},
                          Field{"topic", &S::topic});
    }
};

/// A better take of something that is in the cut.
struct AlternateTake {
    double existingStart = 0.0; ///< of the take in the cut
    double existingEnd = 0.0;
    double alternateStart = 0.0; ///< of the better one
    double alternateEnd = 0.0;
    std::string alternateText;
    std::string reason;

    [[nodiscard]] std::string id() const; ///< "{alternateStart}-{existingStart}"

    static constexpr auto fields() {
        using S = AlternateTake;
        return std::tuple(Field{"existingStart", &S::existingStart}, Field{"existingEnd", &S::existingEnd},
                          Field{"alternateStart", &S::alternateStart}, Field{"alternateEnd", &S::alternateEnd},
                          Field{"alternateText", &S::alternateText}, Field{"reason", &S::reason});
    }
};

/// All that an audit found. The figures are the model's own and are not checked: they may lie outside their scales.
struct AuditReport {
    double coveragePercent = 0.0; ///< how much of the transcript the cut uses, 0 to 100
    std::vector<UsedSegment> usedSegments;
    std::vector<GoldMoment> buriedGold;
    std::vector<Redundancy> redundancies;
    std::vector<AlternateTake> alternates;
    std::vector<std::string> themeGaps; ///< what is spoken of in the footage and not in the cut
    double confidenceScore = 0.0;       ///< how good the cut is thought to be, 0 to 100
    std::string summary;

    static constexpr auto fields() {
        using S = AuditReport;
        return std::tuple(Field{"coveragePercent", &S::coveragePercent}, Field{"usedSegments", &S::usedSegments},
                          Field{"buriedGold", &S::buriedGold}, Field{"redundancies", &S::redundancies},
                          Field{"alternates", &S::alternates}, Field{"themeGaps", &S::themeGaps},
                          Field{"confidenceScore", &S::confidenceScore}, Field{"summary", &S::summary});
    }
};

} // namespace zuvo
