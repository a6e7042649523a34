// Bytes of any kind as text: characters, trimming, numbers, and what ffmpeg wrote about loudness.

#include "Fuzzing.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "steps/Energy.h"

#include <cmath>

using namespace zuvo;

ZUVO_FUZZ_TARGET {
    const auto count = characterCount(text);
    fuzzing::require(count <= text.size());
    fuzzing::require(firstCharacters(text, count) == text);
    const auto half = firstCharacters(text, count / 2);
    fuzzing::require(text.starts_with(half) && characterCount(half) == count / 2);
    const auto trimmed = trimWhiteSpace(text);
    fuzzing::require(trimWhiteSpace(trimmed) == trimmed);
    if (const auto number = parseDouble(text)) {
        fuzzing::require(std::isfinite(*number));
        fuzzing::require(parseDouble(plainText(*number)) == number);
        (void)truncated(*number);
    }
    for (const double volume : meanVolumes(text))
        fuzzing::require(std::isfinite(volume));
}
