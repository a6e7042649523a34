// probe_results.json as somebody may have left it: the sources and the clip map made of it.

#include "Fuzzing.h"
#include "steps/ClipMap.h"
#include "steps/Energy.h"

using namespace zuvo;

ZUVO_FUZZ_TARGET {
    const auto cache = parseForeignJson(text);
    if (!cache)
        return;
    const auto sources = sourcesFromProbeCache(*cache);
    SampleStore samples;
    std::vector<std::string> mediaPaths;
    double end = 0.0;
    for (const auto& source : sources) {
        fuzzing::require(source.seqStart == end && source.seqEnd >= source.seqStart);
        end = source.seqEnd;
        samples[source.name] = {100, -100, 100};
        mediaPaths.push_back(source.path);
        mediaPaths.push_back("/media/" + source.name);
        (void)energyBetween(source.seqStart, source.seqEnd, sources, samples);
    }
    (void)clipMapLogLine(clipMapFromProbeCache(*cache, mediaPaths));
}
