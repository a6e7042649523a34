#include "steps/LegacyChunks.h"

#include "base/Json.h"
#include "base/Paths.h"
#include "base/Text.h"

#include <algorithm>
#include <set>

namespace zuvo {

namespace {

/// The earlier tool's files carry no language; it was made for one.
constexpr const char* legacyLanguage = "es";

bool contains(const std::string& text, const std::string& piece) {
    return text.find(piece) != std::string::npos;
}

std::string underscored(const std::string& mediaPath) {
    return replaceAll(lastPathComponent(mediaPath), ".", "_");
}

/// "Interview_01_3.json" is a chunk of "Interview_01": the name without ".json" and without its last "_" piece. A name
/// with no "_" leaves an empty stem.
std::string chunkStem(const std::string& chunkFileName) {
    const auto name = replaceAll(chunkFileName, ".json", "");
    const auto last = name.rfind('_');
    return last == std::string::npos ? std::string() : name.substr(0, last);
}

bool matchesByMediaName(const std::string& chunkFileName, const std::set<std::string>& mediaNames) {
    const auto stem = chunkStem(chunkFileName);
    return std::any_of(mediaNames.begin(), mediaNames.end(),
                       [&](const std::string& name) { return contains(chunkFileName, name) || contains(name, stem); });
}

bool matchesByBareName(const std::string& chunkFileName, const std::string& mediaPath) {
    const auto withoutExtension = replaceAll(replaceAll(lastPathComponent(mediaPath), ".WAV", ""), ".wav", "");
    const auto bare = replaceAll(withoutExtension, "-", "_");
    // The bare name holds no hyphen, so a chunk name that contains it as it stands contains it in this form too.
    return contains(replaceAll(chunkFileName, "-", "_"), bare);
}

} // namespace

bool legacyChunksMatch(const std::vector<std::string>& chunkFileNames, const std::vector<std::string>& mediaPaths) {
    std::set<std::string> mediaNames;
    for (const auto& path : mediaPaths)
        mediaNames.insert(underscored(path));
    return std::any_of(chunkFileNames.begin(), chunkFileNames.end(), [&](const std::string& chunk) {
        return matchesByMediaName(chunk, mediaNames) ||
               std::any_of(mediaPaths.begin(), mediaPaths.end(),
                           [&](const std::string& path) { return matchesByBareName(chunk, path); });
    });
}

std::vector<TranscriptSegment> legacyChunkLines(std::string_view fileText) {
    const auto file = parseForeignJson(fileText);
    if (!file)
        return {};
    const auto segments = readObjects(*file, "segments");
    if (!segments)
        return {};
    std::vector<TranscriptSegment> lines;
    for (const auto* segment : *segments) {
        auto text = readText(*segment, "text");
        if (!text)
            continue;
        lines.push_back({readNumber(*segment, "start").value_or(0.0), readNumber(*segment, "end").value_or(0.0),
                         std::move(*text), legacyLanguage});
    }
    return lines;
}

} // namespace zuvo
