// The folder of plain files that a run leaves, so that the editor has the story without Resolve.

#include "base/Fields.h"
#include "pipeline/LocalPipeline.h"
#include "platform/FileSystem.h"
#include "steps/ExportTexts.h"

namespace zuvo {

std::string LocalPipeline::saveExports(const std::string& timeline, const MiningResults& analysis,
                                       const TranscriptResult& transcript,
                                       const std::vector<WordSegment>& wordSegments) {
    const auto folder = projectsDir() + "/" + timeline;
    // A name that leads out of the projects' folder is not followed.
    if (!folderWithin(projectsDir(), timeline))
        return folder;
    makeProjectFolder(folder);
    writePromised(folder + "/subtitles.srt", subtitlesText(analysis.segments, wordSegments), Readers::asUsual);
    writePromised(folder + "/transcript.txt", transcriptText(transcript));
    writePromised(folder + "/story_brief.md", storyBriefText(timeline, analysis, defaultDateText(m_platform.clock())),
                  Readers::asUsual);
    const auto newest = folder + "/mining_results.json";
    if (fileExists(newest))
        keepUnderOtherName(newest, folder + "/mining_results_v" + std::to_string(nextMineVersion(folder)) + ".json");
    writePromised(newest, compactText(encodeRecord(analysis)));
    return folder;
}

} // namespace zuvo
