// Every record of a mine that is read from a file or a service: what decodes must encode, and decode again to the same
// text.

#include "RecordRoundTrip.h"
#include "model/AuditReport.h"
#include "model/Media.h"
#include "model/Stores.h"
#include "model/Style.h"

using namespace zuvo;

ZUVO_FUZZ_TARGET {
    const auto json = parseForeignJson(text);
    if (!json)
        return;
    fuzzing::roundTrip<MiningResults>(*json);
    fuzzing::roundTrip<AuditReport>(*json);
    fuzzing::roundTrip<ProbeResult>(*json);
    fuzzing::roundTrip<MediaFileInfo>(*json);
    fuzzing::roundTrip<WhisperResponse>(*json);
    fuzzing::roundTrip<CachedTranscript>(*json);
    fuzzing::roundTrip<SavedProject>(*json);
    fuzzing::roundTrip<StyleSliders>(*json);
    if (const auto project = decodeRecord<SavedProject>(*json); project.value)
        (void)project.value->id();
}
