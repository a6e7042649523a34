// Every record that is read from a file or a service: what decodes must encode, and decode again to the same text.

#include "Fuzzing.h"
#include "model/AuditReport.h"
#include "model/Media.h"
#include "model/Stores.h"
#include "model/Style.h"

using namespace zuvo;

namespace {

template <class Record>
void roundTrip(const Json& json) {
    const auto first = decodeRecord<Record>(json);
    fuzzing::require(first.value.has_value() == first.failure.empty());
    if (!first.value)
        return;
    const auto text = compactText(encodeRecord(*first.value));
    fuzzing::require(text.has_value());
    const auto second = decodeRecordText<Record>(*text);
    fuzzing::require(second.value.has_value());
    fuzzing::require(compactText(encodeRecord(*second.value)) == text);
}

} // namespace

ZUVO_FUZZ_TARGET {
    const auto json = parseForeignJson(text);
    if (!json)
        return;
    roundTrip<MiningResults>(*json);
    roundTrip<AuditReport>(*json);
    roundTrip<ProbeResult>(*json);
    roundTrip<MediaFileInfo>(*json);
    roundTrip<WhisperResponse>(*json);
    roundTrip<CachedTranscript>(*json);
    roundTrip<SavedProject>(*json);
    roundTrip<StyleSliders>(*json);
    if (const auto project = decodeRecord<SavedProject>(*json); project.value)
        (void)project.value->id();
}
