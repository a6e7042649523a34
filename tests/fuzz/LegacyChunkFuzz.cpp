// A chunk file of the earlier tool, and names of chunk and media files.

#include "Fuzzing.h"
#include "base/Text.h"
#include "steps/LegacyChunks.h"

using namespace zuvo;

ZUVO_FUZZ_TARGET {
    for (const auto& line : legacyChunkLines(text))
        fuzzing::require(line.language == "es");
    std::vector<std::string> names;
    for (const auto piece : split(text.substr(0, 200), '\n'))
        names.emplace_back(piece);
    (void)legacyChunksMatch(names, {"/media/ZOOM-0001.WAV"});
    (void)legacyChunksMatch({"ZOOM_0001_000.json"}, names);
}
