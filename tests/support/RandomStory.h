#pragma once

#include "support/StoryRecords.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <random>
#include <vector>

namespace zuvo::tests {

/// All that an exporter is given.
struct ExportedStory {
    std::string projectName;
    std::vector<StorySegment> segments;
    std::vector<MediaFileInfo> mediaFiles;
    double fps = 24.0;
    std::vector<Subtitle> subtitles;
};

/// Makes stories of up to a dozen segments on up to six files, by a seed. Texts are of characters that XML knows, and
/// full of what XML minds; names hold no line end. Times are not negative, moments last up to 30 s.
class RandomStories {
public:
    explicit RandomStories(std::uint32_t seed) : m_random(seed) {}

    ExportedStory next() {
        ExportedStory story;
        story.projectName = name();
        story.fps = oneOf(rates);
        double total = 0.0;
        for (auto count = upTo(6); count > 0; --count) {
            story.mediaFiles.push_back(file());
            total += story.mediaFiles.back().duration;
        }
        for (auto count = upTo(12); count > 0; --count)
            story.segments.push_back(segment(story.mediaFiles, total));
        for (auto count = upTo(4); count > 0; --count) {
            const double start = between(0.0, 100.0);
            story.subtitles.push_back({start, start + between(0.0, 5.0), text()});
        }
        return story;
    }

private:
    static constexpr std::array<double, 10> rates = {23.976, 24.0, 25.0, 29.97, 30.0, 50.0, 59.94, 60.0, 23.98, 47.952};
    static constexpr std::array<const char*, 24> namePieces = {
        "a", "B", "cam", "1", "_",     "-",     " ",   ".",    ".wav", ".MOV",    "/", "&",
        "<", ">", "\"",  "'", "&amp;", "&#38;", "]]>", "<!--", "é",    "e\u0301", "🎬", "👩‍👩‍👧"};
    static constexpr std::array<const char*, 4> textPieces = {"\n", "\t", "word ", "\u00A0"};

    std::size_t upTo(std::size_t most) { return std::uniform_int_distribution<std::size_t>(0, most)(m_random); }
    double between(double low, double high) { return std::uniform_real_distribution<>(low, high)(m_random); }
    template <typename List>
    typename List::value_type oneOf(const List& list) {
        return list[upTo(list.size() - 1)];
    }

    std::string name() {
        std::string made;
        for (auto count = upTo(6); count > 0; --count)
            made += oneOf(namePieces);
        return made;
    }

    std::string text() {
        std::string made;
        for (auto count = upTo(40); count > 0; --count)
            made += upTo(3) == 0 ? oneOf(textPieces) : oneOf(namePieces);
        return made;
    }

    /// Also times between frames, and a few that lie exactly on them.
    double seconds(double most) { return upTo(3) == 0 ? std::floor(between(0.0, most)) : between(0.0, most); }

    std::optional<std::string> timecode() {
        if (upTo(2) == 0)
            return std::nullopt;
        std::array<char, 16> made{};
        std::snprintf(made.data(), made.size(), "%02zu:%02zu:%02zu%c%02zu", upTo(23), upTo(59), upTo(59),
                      upTo(4) == 0 ? ';' : ':', upTo(23));
        return std::string(made.data());
    }

    MediaFileInfo file() {
        auto made = footage(name(), seconds(60.0),
                            oneOf(std::array{Streams::sound, Streams::video, Streams::videoWithSound}), timecode());
        made.path = "/" + name() + "/" + made.filename;
        return made;
    }

    StorySegment segment(const std::vector<MediaFileInfo>& files, double total) {
        const double start = seconds(total + 20.0);
        const auto clip = files.empty() || upTo(4) == 0 ? name() : oneOf(files).filename;
        auto made = moment(start, start + between(0.05, 30.0), clip, text());
        if (upTo(2) != 0)
            made.chapter = text();
        return made;
    }

    std::mt19937 m_random;
};

} // namespace zuvo::tests
