// The answers of the account service and the token file: what decodes must encode, and decode again to the same text.

#include "RecordRoundTrip.h"
#include "model/Account.h"
#include "model/CloudJobs.h"

using namespace zuvo;

ZUVO_FUZZ_TARGET {
    const auto json = parseForeignJson(text);
    if (!json)
        return;
    fuzzing::roundTrip<UserInfo>(*json);
    fuzzing::roundTrip<VersionInfo>(*json);
    fuzzing::roundTrip<TokenValidation>(*json);
    fuzzing::roundTrip<TokenFile>(*json);
    fuzzing::roundTrip<wire::UploadResponse>(*json);
    fuzzing::roundTrip<wire::ProcessRequest>(*json);
    fuzzing::roundTrip<wire::JobStatusResponse>(*json);
}
