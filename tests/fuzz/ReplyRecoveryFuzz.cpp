// What a language model answered: cleaned, decoded, salvaged, audited.

#include "Fuzzing.h"
#include "steps/EnergyAudit.h"
#include "steps/ReplyRecovery.h"

using namespace zuvo;

ZUVO_FUZZ_TARGET {
    const auto cleaned = cleanReply(text);
    fuzzing::require(cleaned.size() <= text.size());
    const auto strict = decodeRecordText<MiningResults>(cleaned);
    const auto salvaged = tryManualParse(cleaned);
    if (strict.value && !strict.value->segments.empty())
        fuzzing::require(salvaged && salvaged->segments.size() == strict.value->segments.size());
    if (!salvaged)
        return;
    fuzzing::require(!salvaged->segments.empty());
    const auto audited = auditEnergy(*salvaged, {}, {}, silenceDb);
    fuzzing::require(audited.results.segments.size() <= salvaged->segments.size());
    (void)compactText(encodeRecord(audited.results));
}
