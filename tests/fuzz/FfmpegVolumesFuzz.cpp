// What ffmpeg wrote about the loudness of a channel.

#include "Fuzzing.h"
#include "steps/Energy.h"

#include <cmath>

using namespace zuvo;

ZUVO_FUZZ_TARGET {
    ChannelLevels levels;
    for (const double volume : meanVolumes(text)) {
        fuzzing::require(std::isfinite(volume));
        levels.leftSum += volume;
        ++levels.samples;
    }
    (void)primaryChannelFilter(levels);
}
