// What ffprobe wrote about a file.

#include "Fuzzing.h"
#include "base/Json.h"
#include "steps/Probing.h"

using namespace zuvo;

ZUVO_FUZZ_TARGET {
    const auto result = probeResultFrom("/media/A001.mov", text);
    if (!result)
        return;
    fuzzing::require(result->filename == "A001.mov");
    (void)probeLogLine(*result);
    (void)formatDuration(result->duration);
    if (const auto cache = probeCacheText({{result->filename, *result}}))
        fuzzing::require(parseForeignJson(*cache).has_value());
}
