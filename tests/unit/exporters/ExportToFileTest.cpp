#include "exporters/EDLExporter.h"
#include "exporters/FCPXMLExporter.h"
#include "exporters/PremiereXMLExporter.h"

#include "base/Files.h"
#include "exporters/MediaList.h"
#include "fakes/TemporaryFolder.h"
#include "support/StoryRecords.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <sys/resource.h>

namespace zuvo {
namespace {

using tests::footage;
using tests::moment;
using tests::Streams;

const std::vector<StorySegment> story = {moment(0.5, 2.25, "Renée.mov", "Grüße 🎬", "Ünd")};
const std::vector<MediaFileInfo> files = {footage("Renée.mov", 60.0, Streams::videoWithSound, "01:00:00:00")};
const std::vector<Subtitle> subtitles = {{0.0, 1.0, "Grüße"}};

struct Format {
    const char* name;
    std::error_code (*exportToFile)(const std::string& path);
    std::string (*exportText)();
};

class ExportToFile : public testing::TestWithParam<Format> {
protected:
    tests::TemporaryFolder folder;

    [[nodiscard]] std::size_t filesThere() const {
        const std::filesystem::directory_iterator entries(folder.path());
        return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
    }
};

TEST_P(ExportToFile, replacesTheFileByTheText) {
    const auto path = folder.write("story_edit", std::string(100'000, 'x'));
    EXPECT_EQ(GetParam().exportToFile(path), std::error_code());
    EXPECT_EQ(folder.read("story_edit"), GetParam().exportText());
    EXPECT_EQ(filesThere(), 1U);
}

TEST_P(ExportToFile, aMissingFolderIsReportedInThePlatformsWordsAndNotMade) {
    const auto error = GetParam().exportToFile(folder / "missing/story_edit");
    EXPECT_EQ(error, std::errc::no_such_file_or_directory);
    EXPECT_EQ(error.message(), std::strerror(ENOENT));
    EXPECT_EQ(filesThere(), 0U);
}

TEST_P(ExportToFile, aFileWhereTheFolderShouldBeIsReportedAndStays) {
    folder.write("file", "old");
    const auto error = GetParam().exportToFile(folder / "file/story_edit");
    EXPECT_EQ(error, std::errc::not_a_directory);
    EXPECT_EQ(error.message(), std::strerror(ENOTDIR));
    EXPECT_EQ(folder.read("file"), "old");
}

TEST_P(ExportToFile, aDiskThatIsFullLeavesTheOldFile) {
    folder.write("story_edit", "old");
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{10, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
    const auto error = GetParam().exportToFile(folder / "story_edit");
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(error, std::errc::file_too_large);
    EXPECT_EQ(folder.read("story_edit"), "old");
    EXPECT_EQ(filesThere(), 1U);
}

INSTANTIATE_TEST_SUITE_P(
    Formats, ExportToFile,
    testing::Values(
        Format{"edl", [](const std::string& path) { return EDLExporter::exportToFile(path, "P", story, files, 25.0); },
               [] { return EDLExporter::exportText("P", story, files, 25.0); }},
        Format{"edl_defaults", [](const std::string& path) { return EDLExporter::exportToFile(path, "P", story); },
               [] { return EDLExporter::exportText("P", story, {}, 24.0); }},
        Format{"fcpxml",
               [](const std::string& path) {
                   return FCPXMLExporter::exportToFile(path, "P", story, files, 25.0, subtitles);
               },
               [] { return FCPXMLExporter::exportText("P", story, files, 25.0, subtitles); }},
        Format{"fcpxml_defaults",
               [](const std::string& path) { return FCPXMLExporter::exportToFile(path, "P", story, files, subtitles); },
               [] { return FCPXMLExporter::exportText("P", story, files, 24.0, subtitles); }},
        Format{"xmeml",
               [](const std::string& path) { return PremiereXMLExporter::exportToFile(path, "P", story, files, 25.0); },
               [] { return PremiereXMLExporter::exportText("P", story, files, 25.0); }},
        Format{"xmeml_defaults",
               [](const std::string& path) { return PremiereXMLExporter::exportToFile(path, "P", story, files); },
               [] { return PremiereXMLExporter::exportText("P", story, files, 24.0); }}),
    [](const auto& chosen) { return chosen.param.name; });

TEST(ExportsOnDemand, workWithoutMediaPathsThroughTheMadeUpEntries) {
    const tests::TemporaryFolder folder;
    const auto media = generateMediaFileInfo(std::nullopt, {}, story);
    EXPECT_FALSE(EDLExporter::exportToFile(folder / "story_edit.edl", "Zuvo Story Edit", story, media));
    EXPECT_FALSE(
        FCPXMLExporter::exportToFile(folder / "story_edit.fcpxml", "Zuvo Story Edit", story, media, subtitles));
    EXPECT_FALSE(
        PremiereXMLExporter::exportToFile(folder / "story_edit_premiere.xml", "Zuvo Story Edit", story, media));
    // The made-up file starts at 0 and has sound alone.
    EXPECT_NE(folder.read("story_edit.edl").find("001  Renée    A     C        00:00:00:12 00:00:02:06 "),
              std::string::npos);
    EXPECT_NE(
        folder.read("story_edit.fcpxml").find(" src=\"file:///path/to/Renée.mov\" start=\"0s\" duration=\"3600s\""),
        std::string::npos);
    EXPECT_NE(folder.read("story_edit_premiere.xml").find("<pathurl>file://localhost/path/to/Renée.mov</pathurl>"),
              std::string::npos);
}

} // namespace
} // namespace zuvo
