// Eight stories, each as a whole document in all three formats. The documents were worked out by hand; what is not
// plain in them is worked out beside the story.

#include "exporters/EDLExporter.h"
#include "exporters/FCPXMLExporter.h"
#include "exporters/PremiereXMLExporter.h"

#include "support/GoldenFile.h"
#include "support/StoryRecords.h"

#include <gtest/gtest.h>

namespace zuvo {
namespace {

using tests::footage;
using tests::moment;
using tests::Streams;

struct Story {
    std::string name; ///< of its golden files
    std::string projectName;
    std::vector<StorySegment> segments;
    std::vector<MediaFileInfo> mediaFiles;
    double fps = 24.0;
    std::optional<std::vector<Subtitle>> subtitles;
};

/// The list of media is one file from 01:00:00:00 = 3600 s on.
///
///     segment   source (own timecode)   record          frames of the source   of the sequence
///     10-15.5   3610-3615.5             0-5.5           240-372                0-132
///     100.25-   3700.25-3703            5.5-8.25        2406-2472              132-198
///     42-44.5   3642-3644.5             8.25-10.75      1008-1068              198-258
///
/// In 1/2400 s: 5.5 is 13200, 100.25 is 240600, 2.75 is 6600, 8.25 is 19800, 2.5 is 6000, 10.75 is 25800.
Story oneRecording() {
    return {"one_recording",
            "Zuvo Story Edit",
            {moment(10.0, 15.5, "interview.wav", "We came here for one summer.", "Arrival"),
             moment(100.25, 103.0, "interview.wav", "And then we stayed.", "Arrival"),
             moment(42.0, 44.5, "interview.wav")},
            {footage("interview.wav", 600.0, Streams::sound, "01:00:00:00")},
            24.0,
            std::nullopt};
}

/// By start timecode: cam_a (none, so 0), sound (7140 s), cam_b (7200 s); in mine time 0-40, 40-60, 60-90. The third
/// segment starts where cam_a ends, which belongs to sound.
///
///     segment    in its file   record EDL          frames, halves away from zero   of the sequence
///     65.25-70   5.25-10       0-4.75 -> 04:18     131.25, 118.75 long: 131-250    0-119
///     12.5-20    12.5-20       4.72+7.5 -> 12:05   312.5, 187.5 long: 313-501      119-307
///     40-44      0-4           12.2+4 -> 16:04     0, 100 long: 0-100              307-407
///
/// The EDL's record side goes on from whole frames: 4 s 18 frames are 4.72 s, 12 s 5 frames are 12.2 s; as a double
/// 12.2 + 4 lies a hair below 16.2, so its fifth frame is not full. The sequence is 16.25 s or 406 frames long, its
/// rounded clips 407. In 1/2500 s: 5.25 is 13125, 4.75 is 11875, 12.5 is 31250, 7.5 is 18750, 12.25 is 30625.
Story twoCamerasOutOfOrder() {
    return {"two_cameras_out_of_order",
            "Harbour",
            {moment(65.25, 70.0, "cam_b.mov", "The harbour was empty.", "Harbour"),
             moment(12.5, 20.0, "cam_a.mp4", "Nobody spoke."),
             moment(40.0, 44.0, "sound.wav", "Only the wind.", "Wind")},
            {footage("cam_b.mov", 30.0, Streams::videoWithSound, "02:00:00:00"),
             footage("sound.wav", 20.0, Streams::sound, "01:59:00:00"), footage("cam_a.mp4", 40.0, Streams::video)},
            25.0,
            std::nullopt};
}

/// a's drop-frame timecode is not read, so it counts as 0 and comes first. b starts at 3570 s and 15 frames: 3570.625
/// on the map, which is always read at 24, but 3570 + 15/29.97 = 3570.5005005 (107115015/30000) as an asset.
///
///     segment   EDL source           record              frames                          of the sequence
///     8-10.5    8-10.5 (14.985)      0-2.5 -> 02:14      239.76, 74.925 long: 240-315    0-75
///     61-64     3571.625 (18.73)-    2.467+3 -> 05:14    29.97, 89.91 long: 30-120       75-165
///
/// The sequence is 5.5 s, or 164.8 frames.
Story dropFrame() {
    return {"drop_frame",
            "Drop",
            {moment(8.0, 10.5, "a.mov", "First things first.", "One"),
             moment(61.0, 64.0, "b.mov", "Second to none.", "Two")},
            {footage("b.mov", 30.0, Streams::videoWithSound, "00:59:30:15"),
             footage("a.mov", 60.0, Streams::videoWithSound, "01:00:00;12")},
            29.97,
            std::nullopt};
}

/// Times stand as they are: 3725.5 s are 01:02:05:12 or frame 89412. The length of a file nobody knows is that of the
/// sequence, 6.5 s or 156 frames. An empty chapter is one.
Story noMedia() {
    return {"no_media",
            "",
            {moment(5.0, 7.5, "source", "Where it began.", ""), moment(100.0, 101.0, "B-roll.MP3", "Music."),
             moment(3725.5, 3728.5, "source", "And where it ended.", "End")},
            {},
            24.0,
            std::vector<Subtitle>{{0.0, 2.5, "Where it began."}}};
}

/// Both files are under 10 s and have their place: 0-4 and 4-12. take starts at 36005 s and 12 frames: 36005.5 on the
/// map, 36005 + 12/23.976 = 36005.5005005 (864132012/24000) as an asset. 20 s lies behind the end of both, so it is
/// 16 s into take.
///
///     segment   in its file   EDL source                  frames                           of the sequence
///     1-3       1-3           36001-36003                 23.976, 47.952 long: 24-72       0-48
///     4.5-6.5   0.5-2.5       36006-36008                 11.988, 47.952 long: 12-60       48-96
///     20-22.5   16-18.5       36021.5 (11.988)-36024      383.616, 59.94 long: 384-444     96-156
Story shortFilesAndPastTheEnd() {
    return {"short_files_and_past_the_end",
            "Slates",
            {moment(1.0, 3.0, "slate.mov", "Slate.", "A"), moment(4.5, 6.5, "take.mov", "Take one."),
             moment(20.0, 22.5, "take", "Still rolling.", "B")},
            {footage("slate.mov", 4.0, Streams::videoWithSound, "10:00:00:00"),
             footage("take.mov", 8.0, Streams::videoWithSound, "10:00:05:12")},
            23.976,
            std::nullopt};
}

/// Reels, comments and clip names are cut by what a reader sees as a character: the family is the 50th, the letter with
/// its accent the 60th.
Story names() {
    const std::string clip = "Renée's \"take\" 🎬.mov";
    auto first = footage(clip, 120.0, Streams::videoWithSound);
    first.path = "/footage/A & B/" + clip;
    return {
        "names",
        "Tom & \"Jerry's\" <cut> 🎬",
        {moment(0.0, 6.0, clip, "\"Fish & chips,\" she said.\nThen: 'No.'", "Q&A <1>"),
         moment(130.0, 132.0, "x<y>.wav",
                "The three of us all stood on the quay and watched👩‍👩‍👧 all dayse\u0301 and all nights",
                "Ende 🏁")},
        {first, footage("x<y>.wav", 60.0, Streams::sound)},
        30.0,
        std::vector<Subtitle>{{0.0, 1.0, "\"Fish & chips\" &amp; <i>"}, {1.0, 2.25, "Then: 'No.'\n– Why? 🎬"}}};
}

/// 50.5 s are 303000/6000.
Story noSegments() {
    return {"no_segments", "Nothing chosen",       {}, {footage("cam.mov", 50.5, Streams::video)},
            60.0,          std::vector<Subtitle>{}};
}

/// 23.98 is no listed rate: FCPXML counts in 1/2398 s, XMEML at 24 without NTSC. -1 s lies before the file, so the EDL
/// takes the times as they stand, FCPXML counts from the start timecode (10 s - 1 s), XMEML takes the clip's own name
/// and frame -23.98. Its name is a part of the file's name, which FCPXML alone looks for.
///
///     segment   EDL source                 record                   frames                       of the sequence
///     1-2.5     10+1, 12.5 (11.99)         0-1.5 -> 01:11           23.98, 35.97 long: 24-60     0-36
///     -1-1      -1, 1                      1.4587+2 -> 03:10        -23.98, 47.96 long: -24-24   36-84
///
/// 1.4587 is 1 s 11 frames; as a double its fraction times 23.98 lies a hair below 11. The captions: 1.25 x 2398 =
/// 2997.5, 1.75 x 2398 = 4196.5, halves away from zero.
Story beforeTheFirstFile() {
    return {"before_the_first_file",
            "Early",
            {moment(1.0, 2.5, "view_1", "One & two.", "C"), moment(-1.0, 1.0, "view_1", "Too early.")},
            {footage("interview_1.mov", 100.0, Streams::videoWithSound, "00:00:10:00")},
            23.98,
            std::vector<Subtitle>{{0.0, 1.25, "One & two"}, {1.25, 3.0, "Grüße"}}};
}

class GoldenDocuments : public testing::TestWithParam<Story (*)()> {
protected:
    Story story = GetParam()();
};

TEST_P(GoldenDocuments, edl) {
    tests::expectGolden(EDLExporter::exportText(story.projectName, story.segments, story.mediaFiles, story.fps),
                        "exporters/" + story.name + ".edl");
}

TEST_P(GoldenDocuments, fcpxml) {
    tests::expectGolden(
        FCPXMLExporter::exportText(story.projectName, story.segments, story.mediaFiles, story.fps, story.subtitles),
        "exporters/" + story.name + ".fcpxml");
}

TEST_P(GoldenDocuments, xmeml) {
    tests::expectGolden(PremiereXMLExporter::exportText(story.projectName, story.segments, story.mediaFiles, story.fps),
                        "exporters/" + story.name + ".xml");
}

INSTANTIATE_TEST_SUITE_P(Stories, GoldenDocuments,
                         testing::Values(oneRecording, twoCamerasOutOfOrder, dropFrame, noMedia,
                                         shortFilesAndPastTheEnd, names, noSegments, beforeTheFirstFile),
                         [](const auto& chosen) { return chosen.param().name; });

} // namespace
} // namespace zuvo
