// Text of a service, a tool or a file of the user's, read as JSON and as each record that is read from a file.

#include "base/Fields.h"
#include "base/Json.h"
#include "model/MiningResults.h"
#include "model/Stores.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

/// What was read is written and read again: nothing may be lost on the way.
template <class Record>
void roundTrip(std::string_view text) {
    const auto decoded = zuvo::decodeRecordText<Record>(text);
    if (!decoded.value)
        return;
    const auto written = zuvo::compactText(zuvo::encodeRecord(*decoded.value));
    if (!written)
        std::abort();
    const auto again = zuvo::decodeRecordText<Record>(*written);
    if (!again.value || zuvo::compactText(zuvo::encodeRecord(*again.value)) != written)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (const auto json = zuvo::parseForeignJson(text)) {
        const auto written = zuvo::prettySortedText(*json);
        if (!written || zuvo::parseForeignJson(*written) != json)
            std::abort();
    }
    roundTrip<zuvo::MiningResults>(text);
    roundTrip<zuvo::SavedProject>(text);
    roundTrip<zuvo::CachedTranscript>(text);
    return 0;
}
