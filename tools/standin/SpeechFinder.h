#pragma once

#include "standin/Envelope.h"
#include "standin/Heard.h"

#include <cstddef>
#include <vector>

namespace zuvo::standin {

/// A stretch of speech in seconds from the start of the envelope, end not included.
struct Stretch {
    double start = 0.0;
    double end = 0.0;
};

/// Where somebody seems to speak: where the level rises above the quietest fifth of `levels[first, last)`.
///
///     level   ....####.###...........##########################....
///     found       |--A--|             |----B----||----C----|
///
/// Short breaks do not end a stretch (A), blips are passed over, and what is longer than 10 s is given in equal pieces
/// (B, C). A stretch shorter than 3 s is joined with a close neighbour where both together stay within 10 s.
[[nodiscard]] std::vector<Stretch> findSpeech(const Envelope& envelope, std::size_t first, std::size_t last);

/// A line that says where speech was heard, its words spread evenly over the stretch:
/// "Speech from 3.2 to 7.8 seconds."
[[nodiscard]] HeardLine describeSpeech(const Stretch& stretch);

} // namespace zuvo::standin
