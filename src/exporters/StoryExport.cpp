#include "exporters/StoryExport.h"

#include "exporters/EDLExporter.h"
#include "exporters/FCPXMLExporter.h"
#include "exporters/PremiereXMLExporter.h"

namespace zuvo {

std::string_view exportFileName(ExportFormat format) {
    switch (format) {
    case ExportFormat::edl:
        break;
    case ExportFormat::fcpxml:
        return "story_edit.fcpxml";
    case ExportFormat::premiere:
        return "story_edit_premiere.xml";
    }
    return "story_edit.edl";
}

std::error_code exportStory(ExportFormat format, const std::string& path, const MiningResults& story,
                            const std::vector<MediaFileInfo>& media, double fps) {
    const std::string name(exportSequenceName);
    switch (format) {
    case ExportFormat::edl:
        break;
    case ExportFormat::fcpxml:
        return FCPXMLExporter::exportToFile(path, name, story.segments, media, fps, story.subtitles);
    case ExportFormat::premiere:
        return PremiereXMLExporter::exportToFile(path, name, story.segments, media, fps);
    }
    return EDLExporter::exportToFile(path, name, story.segments, media, fps);
}

} // namespace zuvo
