#include "cli/Export.h"

#include "cli/Streams.h"
#include "exporters/EDLExporter.h"
#include "exporters/FCPXMLExporter.h"
#include "exporters/MediaList.h"
#include "exporters/PremiereXMLExporter.h"
#include "platform/FileSystem.h"

namespace zuvo {

namespace {

constexpr const char* sequenceName = "Zuvo Story Edit";

/// Probes each file without touching what the last mine left in the cache.
QCoro::Task<ProbeResults> probed(std::shared_ptr<LocalPipeline> pipeline, std::vector<std::string> paths) {
    ProbeResults results;
    for (const auto& path : paths) {
        const auto result = co_await pipeline->probeMediaFile(path);
        if (result)
            results[result->filename] = *result;
    }
    co_return results;
}

struct Written {
    std::string path;
    std::error_code failure;
};

Written writeStory(const std::string& folder, const MiningResults& story, const std::vector<MediaFileInfo>& media,
                   const ExportCommand& command) {
    Written written;
    switch (command.format) {
    case ExportFormat::edl:
        written.path = folder + "/story_edit.edl";
        written.failure =
            EDLExporter::exportToFile(written.path, sequenceName, story.segments, media, command.framesPerSecond);
        break;
    case ExportFormat::fcpxml:
        written.path = folder + "/story_edit.fcpxml";
        written.failure = FCPXMLExporter::exportToFile(written.path, sequenceName, story.segments, media,
                                                       command.framesPerSecond, story.subtitles);
        break;
    case ExportFormat::premiere:
        written.path = folder + "/story_edit_premiere.xml";
        written.failure = PremiereXMLExporter::exportToFile(written.path, sequenceName, story.segments, media,
                                                            command.framesPerSecond);
        break;
    }
    return written;
}

} // namespace

QCoro::Task<ExitStatus> exportProject(std::shared_ptr<LocalPipeline> pipeline, ExportCommand command) {
    const auto project = newestProject(*pipeline, command.project);
    if (!project)
        co_return failWith("there is no project called \"" + command.project + "\"; zuvo projects lists them");
    if (!project->results)
        co_return failWith("the project \"" + command.project + "\" holds no story; mine it with --reload first");
    const auto folder = folderWithin(pipeline->projectsDir(), project->timeline);
    if (!folder)
        co_return failWith("the project \"" + command.project + "\" lies outside of the projects' folder");
    const auto probes = co_await probed(pipeline, project->mediaPaths);
    const auto media = generateMediaFileInfo(project->mediaPaths, probes, project->results->segments);
    const auto written = writeStory(*folder, *project->results, media, command);
    if (written.failure)
        co_return failWith(written.path + " could not be written: " + written.failure.message());
    print(written.path + "\n");
    co_return ExitStatus::complete;
}

} // namespace zuvo
