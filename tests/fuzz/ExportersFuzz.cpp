// Names and texts of a story, split at line feeds: no text adds markup to a document, and each special character of it
// comes out as one entity.

#include "Fuzzing.h"
#include "base/Text.h"
#include "exporters/EDLExporter.h"
#include "exporters/FCPXMLExporter.h"
#include "exporters/PremiereXMLExporter.h"

#include <algorithm>
#include <vector>

using namespace zuvo;

namespace {

/// The foreign texts of a story, one each.
struct Texts {
    std::string project;
    std::string path;
    std::string transcript;
    std::string chapter;
    std::string caption;
};

std::string piece(const std::vector<std::string_view>& pieces, std::size_t i) {
    return i < pieces.size() ? std::string(pieces[i]) : std::string();
}

std::string fcpxml(const Texts& texts) {
    return FCPXMLExporter::exportText(texts.project, {{0, 1.0, 2.5, "a", texts.transcript, "", texts.chapter}},
                                      {{texts.path, "a", 10.0, std::nullopt, 24.0, true, true, std::nullopt}}, 24.0,
                                      std::vector<Subtitle>{{0.0, 1.0, texts.caption}});
}

std::string xmeml(const Texts& texts) {
    return PremiereXMLExporter::exportText(texts.project, {{0, 1.0, 2.5, "a", texts.transcript, "", texts.chapter}},
                                           {{texts.path, "a", 10.0, std::nullopt, 24.0, true, true, std::nullopt}});
}

auto count(std::string_view text, char character) {
    return std::count(text.begin(), text.end(), character);
}

/// Of the characters that XML minds.
auto specials(std::string_view text) {
    return count(text, '&') + count(text, '<') + count(text, '>') + count(text, '"') + count(text, '\'');
}

void requireSameMarkup(const std::string& document, const std::string& withoutTexts, std::ptrdiff_t entities) {
    for (const char character : {'<', '>', '"', '\''})
        fuzzing::require(count(document, character) == count(withoutTexts, character));
    fuzzing::require(count(document, '&') == entities);
}

} // namespace

ZUVO_FUZZ_TARGET {
    const auto pieces = split(text, '\n');
    const Texts texts{piece(pieces, 0), piece(pieces, 1), piece(pieces, 2), piece(pieces, 3), piece(pieces, 4)};

    // A path stands in an asset and in its media.
    requireSameMarkup(fcpxml(texts), fcpxml({}),
                      specials(texts.project) + 2 * specials(texts.path) + specials(texts.chapter) +
                          specials(firstCharacters(texts.transcript, 50)) + specials(texts.caption));
    requireSameMarkup(xmeml(texts), xmeml({}),
                      specials(texts.project) + specials(texts.path) + specials(texts.chapter));

    // The names by which media are looked for, and a timecode: whatever is found, the list has its event.
    const std::vector<StorySegment> story = {{0, 1.0, 2.5, piece(pieces, 5), texts.transcript, "", texts.chapter}};
    const std::vector<MediaFileInfo> media = {
        {"/a", piece(pieces, 6), 10.0, piece(pieces, 7), 24.0, true, true, std::nullopt}};
    fuzzing::require(EDLExporter::exportText(texts.project, story, media).find("\n001  ") != std::string::npos);
    fuzzing::require(FCPXMLExporter::exportText("", story, media, std::nullopt).ends_with("\n</fcpxml>\n"));
    fuzzing::require(PremiereXMLExporter::exportText("", story, media).ends_with("</xmeml>\n"));
}
