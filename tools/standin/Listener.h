#pragma once

#include "standin/Heard.h"
#include "standin/SampleKnowledge.h"
#include "standin/WavReader.h"

#include <vector>

namespace zuvo::standin {

/// What is said in the sound, in order of time, seconds from its start: the words of the sample where the sample is
/// recognised, elsewhere lines that say where speech was heard.
[[nodiscard]] std::vector<HeardLine> listen(const SampleKnowledge& sample, const Sound& sound);

} // namespace zuvo::standin
