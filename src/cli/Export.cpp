#include "cli/Export.h"

#include "base/Text.h"
#include "cli/Streams.h"
#include "exporters/MediaList.h"
#include "exporters/StoryExport.h"
#include "platform/FileSystem.h"
#include "steps/ProjectMedia.h"

namespace zuvo {

namespace {

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

} // namespace

QCoro::Task<ExitStatus> exportProject(std::shared_ptr<LocalPipeline> pipeline, ExportCommand command) {
    auto project = newestProject(*pipeline, command.project);
    if (!project)
        co_return failWith(noSuchProject(command.project));
    if (!project->results)
        co_return failWith("the project \"" + harmlessText(command.project) +
                           "\" holds no story; mine it with --reload first");
    const auto folder = folderWithin(pipeline->projectsDir(), project->timeline);
    if (!folder)
        co_return failWith("the project \"" + harmlessText(command.project) +
                           "\" lies outside of the projects' folder");
    auto used = withAbsoluteMedia(std::move(*project));
    if (!used.refused.empty())
        tell("zuvo: " + refusedMediaMessage(used.refused));
    project = std::move(used.project);
    const auto probes = co_await probed(pipeline, project->mediaPaths);
    const auto media = generateMediaFileInfo(project->mediaPaths, probes, project->results->segments);
    const auto path = *folder + "/" + std::string(exportFileName(command.format));
    const auto failure = exportStory(command.format, path, *project->results, media, command.framesPerSecond);
    if (failure)
        co_return failWith(harmlessText(path) + " could not be written: " + failure.message());
    printPath(path);
    co_return ExitStatus::complete;
}

} // namespace zuvo
