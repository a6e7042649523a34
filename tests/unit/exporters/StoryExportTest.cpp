#include "exporters/StoryExport.h"

#include "exporters/EDLExporter.h"
#include "exporters/FCPXMLExporter.h"
#include "exporters/PremiereXMLExporter.h"
#include "fakes/TemporaryFolder.h"

#include <gtest/gtest.h>

using namespace zuvo;
using namespace zuvo::tests;

namespace {

MiningResults story() {
    MiningResults results;
    StorySegment moment;
    moment.startTime = 1.0;
    moment.endTime = 3.5;
    moment.sourceClip = "A.mov";
    moment.transcript = "hola";
    results.segments = {moment};
    results.subtitles = {{1.0, 2.0, "a card"}};
    return results;
}

const std::vector<MediaFileInfo> media = {{"/footage/A.mov", "A.mov", 60.0, "01:00:00:00", 25.0, true, true, "prores"}};

std::string bytesOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

TEST(StoryExport, everyFormHasItsFileName) {
    EXPECT_EQ(exportFileName(ExportFormat::edl), "story_edit.edl");
    EXPECT_EQ(exportFileName(ExportFormat::fcpxml), "story_edit.fcpxml");
    EXPECT_EQ(exportFileName(ExportFormat::premiere), "story_edit_premiere.xml");
}

TEST(StoryExport, writesWhatTheFormsExporterWrites) {
    const TemporaryFolder disk;
    const auto results = story();
    const auto path = disk / "story";
    ASSERT_FALSE(exportStory(ExportFormat::edl, path, results, media, 30.0));
    EXPECT_EQ(bytesOf(path), EDLExporter::exportText("Zuvo Story Edit", results.segments, media, 30.0));
    ASSERT_FALSE(exportStory(ExportFormat::fcpxml, path, results, media, 30.0));
    EXPECT_EQ(bytesOf(path),
              FCPXMLExporter::exportText("Zuvo Story Edit", results.segments, media, 30.0, results.subtitles));
    ASSERT_FALSE(exportStory(ExportFormat::premiere, path, results, media, 30.0));
    EXPECT_EQ(bytesOf(path), PremiereXMLExporter::exportText("Zuvo Story Edit", results.segments, media, 30.0));
}

TEST(StoryExport, twentyFourFramesASecondUnlessToldOtherwise) {
    const TemporaryFolder disk;
    const auto results = story();
    ASSERT_FALSE(exportStory(ExportFormat::edl, disk / "story", results, media));
    EXPECT_EQ(bytesOf(disk / "story"), EDLExporter::exportText("Zuvo Story Edit", results.segments, media, 24.0));
}

TEST(StoryExport, aFolderThatIsNotThereIsAFailureOfEveryForm) {
    const TemporaryFolder disk;
    for (const auto format : {ExportFormat::edl, ExportFormat::fcpxml, ExportFormat::premiere})
        EXPECT_TRUE(exportStory(format, disk / "none/story", story(), media));
}
