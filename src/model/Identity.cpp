#include "model/Identity.h"

#include "base/Numbers.h"
#include "model/AuditReport.h"
#include "model/MiningResults.h"

namespace zuvo {

std::string timePairId(double first, double second) {
    return plainText(first) + "-" + plainText(second);
}

std::string Subtitle::id() const {
    return timePairId(startTime, endTime);
}

std::string UsedSegment::id() const {
    return timePairId(startTime, endTime);
}

std::string GoldMoment::id() const {
    return timePairId(startTime, endTime);
}

std::string Redundancy::id() const {
    return timePairId(firstStart, secondStart);
}

std::string AlternateTake::id() const {
    return timePairId(alternateStart, existingStart);
}

} // namespace zuvo
