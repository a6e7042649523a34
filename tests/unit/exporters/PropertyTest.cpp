// What holds for every story: the list's record side, and the bytes of all formats on any desktop.

#include "exporters/EDLExporter.h"
#include "exporters/FCPXMLExporter.h"
#include "exporters/PremiereXMLExporter.h"

#include "base/Text.h"
#include "support/CommaLocale.h"
#include "support/RandomStory.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fmt/format.h>

namespace zuvo {
namespace {

constexpr int storyCount = 10'000;

/// Reads a list from the front; what is not as expected fails the running test.
class ListReader {
public:
    explicit ListReader(std::string_view text) : m_rest(text) {}

    void expect(const std::string& text) {
        EXPECT_EQ(m_rest.substr(0, text.size()), text);
        m_rest.remove_prefix(std::min(text.size(), m_rest.size()));
    }

    std::string take(std::size_t count) {
        EXPECT_GE(m_rest.size(), count);
        const std::string taken(m_rest.substr(0, count));
        m_rest.remove_prefix(taken.size());
        return taken;
    }

    /// A timecode under 100 hours with every field in its range, in seconds.
    double timecode(double fps) {
        const auto text = take(11);
        std::array<int, 4> fields{};
        const int count = std::sscanf(text.c_str(), "%2d:%2d:%2d:%2d", &fields[0], &fields[1], &fields[2], &fields[3]);
        EXPECT_EQ(count, 4) << text;
        for (const int field : fields)
            EXPECT_GE(field, 0) << text;
        EXPECT_LT(fields[1], 60) << text;
        EXPECT_LT(fields[2], 60) << text;
        EXPECT_LT(fields[3], fps) << text;
        return fields[0] * 3600.0 + fields[1] * 60.0 + fields[2] + fields[3] / fps;
    }

    [[nodiscard]] bool atEnd() const { return m_rest.empty(); }

private:
    std::string_view m_rest;
};

/// The next event: number, reel and remarks are the segment's, the times are checked against its length. Gives the
/// record out.
double readEvent(ListReader& list, std::size_t number, const StorySegment& segment, double recordEnd, double fps) {
    // Truncation takes less than a frame from each end; sums of doubles err by far less.
    constexpr double error = 1e-6;
    const double frame = 1.0 / fps;
    const double length = segment.endTime - segment.startTime;

    auto reel = exporters::reelName(segment.sourceClip);
    reel += std::string(8 - characterCount(reel), ' ');
    list.expect(fmt::format("{:03d}  {} ", number, reel));
    const auto track = list.take(1);
    EXPECT_TRUE(track == "V" || track == "A") << track;
    list.expect("     C        ");
    const double sourceIn = list.timecode(fps);
    list.expect(" ");
    const double sourceOut = list.timecode(fps);
    list.expect(" ");
    const double recordIn = list.timecode(fps);
    list.expect(" ");
    const double recordOut = list.timecode(fps);
    EXPECT_NEAR(sourceOut - sourceIn, length, frame + error);
    EXPECT_EQ(recordIn, recordEnd) << "a gap";
    EXPECT_LE(recordOut, recordIn + length + error);
    EXPECT_GT(recordOut, recordIn + length - frame - error);

    list.expect("\n* FROM CLIP NAME: " + segment.sourceClip + "\n");
    if (!segment.transcript.empty())
        list.expect("* COMMENT: " + firstCharacters(segment.transcript, 60) + "\n");
    if (segment.chapter)
        list.expect("* CHAPTER: " + *segment.chapter + "\n");
    list.expect("\n");
    return recordOut;
}

TEST(EDLProperty, recordTimesAreGaplessFromZeroAndEventsAsLongAsTheirSegments) {
    tests::RandomStories stories(41);
    std::size_t events = 0;
    for (int run = 0; run < storyCount; ++run) {
        const auto story = stories.next();
        const auto text = EDLExporter::exportText(story.projectName, story.segments, story.mediaFiles, story.fps);
        ListReader list(text);
        list.expect("TITLE: " + story.projectName + "\nFCM: NON-DROP FRAME\n\n");
        double recordEnd = 0.0;
        for (std::size_t i = 0; i < story.segments.size(); ++i)
            recordEnd = readEvent(list, i + 1, story.segments[i], recordEnd, story.fps);
        EXPECT_TRUE(list.atEnd());
        events += story.segments.size();
        if (HasFailure())
            FAIL() << "story " << run << "\n" << text;
    }
    EXPECT_GT(events, std::size_t{storyCount});
}

/// While it lives, the local time is 5 h 45 min before universal time.
class OddTimeZone {
public:
    OddTimeZone() {
        setenv("TZ", "ODD-5:45", 1);
        tzset();
    }
    ~OddTimeZone() {
        unsetenv("TZ");
        tzset();
    }
    OddTimeZone(const OddTimeZone&) = delete;
    OddTimeZone& operator=(const OddTimeZone&) = delete;
};

struct Documents {
    std::string edl;
    std::string fcpxml;
    std::string xmeml;
};

Documents documentsOf(const tests::ExportedStory& story) {
    return {EDLExporter::exportText(story.projectName, story.segments, story.mediaFiles, story.fps),
            FCPXMLExporter::exportText(story.projectName, story.segments, story.mediaFiles, story.fps, story.subtitles),
            PremiereXMLExporter::exportText(story.projectName, story.segments, story.mediaFiles, story.fps)};
}

TEST(ExportersProperty, theBytesAreTheSameUnderACommaLocaleAndAnOddTimeZone) {
    tests::RandomStories stories(42);
    for (int run = 0; run < storyCount; ++run) {
        const auto story = stories.next();
        const auto here = documentsOf(story);
        const tests::CommaLocale locale;
        const OddTimeZone timeZone;
        const auto there = documentsOf(story);
        ASSERT_EQ(here.edl, there.edl) << "story " << run;
        ASSERT_EQ(here.fcpxml, there.fcpxml) << "story " << run;
        ASSERT_EQ(here.xmeml, there.xmeml) << "story " << run;
    }
}

} // namespace
} // namespace zuvo
