// A file name or path as somebody's disk or a model's answer has it.

#include "Fuzzing.h"
#include "base/Paths.h"
#include "base/Text.h"
#include "exporters/EDLExporter.h"
#include "steps/MineVersions.h"

#include <string>
#include <vector>

using namespace zuvo;

ZUVO_FUZZ_TARGET {
    const auto name = lastPathComponent(text);
    fuzzing::require(name.find('/') == std::string::npos || name == "/");
    fuzzing::require(text.find(name) != std::string_view::npos);
    fuzzing::require(text.starts_with(withoutExtension(text)));
    const auto extension = pathExtension(text);
    fuzzing::require(extension.find('.') == std::string::npos);
    fuzzing::require(extension.empty() == (withoutExtension(name) == name));
    fuzzing::require(characterCount(exporters::reelName(text)) <= 8);

    std::vector<std::string> names;
    for (const auto line : split(text, '\n'))
        names.emplace_back(line);
    const auto next = nextMineVersionAmong(names);
    for (const auto& one : names) {
        if (const auto version = mineVersionNumber(one))
            fuzzing::require(next >= *version && one.starts_with("mining_results_v") && one.ends_with(".json"));
    }
    fuzzing::require(withoutControlCharacters(text).find('\x1b') == std::string::npos);
    const auto shown = harmlessText(name);
    fuzzing::require(isValidUtf8(shown) && shown.find_first_of("\n\x1b") == std::string::npos);
    fuzzing::require(harmlessText(shown) == shown);
}
