#include "resolve/Scripts.h"

#include "base/Text.h"

#include <QFile>
#include <array>
#include <fmt/format.h>
#include <initializer_list>
#include <span>
#include <stdexcept>

namespace zuvo {

namespace {

constexpr std::string_view scriptLibName = "__RESOLVE_SCRIPT_LIB__";
constexpr std::string_view timelineName = "__TIMELINE_NAME__";
constexpr std::string_view segmentsPathName = "__SEGMENTS_PATH__";
constexpr std::string_view mediaPathsName = "__MEDIA_PATHS__";
constexpr std::string_view subtitleCardsName = "__SUBTITLE_CARDS__";

std::string embedded(const char* file) {
    QFile script(QStringLiteral(":/resolve/scripts/") + QLatin1String(file));
    if (!script.open(QIODevice::ReadOnly))
        throw std::logic_error(std::string("the program lacks its own script ") + file);
    return script.readAll().toStdString();
}

std::string filled(const char* file, std::initializer_list<Placeholder> placeholders) {
    return fillPlaceholders(embedded(file), std::span(placeholders.begin(), placeholders.size()));
}

/// A line end closes no Python text; the system cuts a program off at a zero byte.
bool breaksTheLine(const std::string& text) {
    return text.find_first_of(std::string_view("\n\r\0", 3)) != std::string::npos;
}

/// A name for between double quotes, where it is put as it is.
std::optional<std::string> plainName(const std::string& name) {
    if (breaksTheLine(name) || name.find_first_of("\"\\") != std::string::npos)
        return std::nullopt;
    return name;
}

/// A name for between double quotes, with its own double quotes escaped. Its backslashes stay, so one before a quote
/// or at the end would undo the escape.
std::optional<std::string> escapedName(const std::string& name) {
    if (breaksTheLine(name) || name.ends_with('\\') || name.find("\\\"") != std::string::npos)
        return std::nullopt;
    return replaceAll(name, "\"", "\\\"");
}

std::string escapedCharacter(char c) {
    constexpr unsigned char firstPrintable = 0x20;
    constexpr unsigned char deleteCharacter = 0x7F;
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\')
        return std::string("\\") + c;
    if (byte < firstPrintable || byte == deleteCharacter)
        return fmt::format("\\x{:02x}", byte);
    return std::string(1, c);
}

} // namespace

std::string projectNameScript(const std::string& scriptLib) {
    return filled("project_name.py", {{scriptLibName, scriptLib}});
}

std::string timelineNamesScript(const std::string& scriptLib) {
    return filled("timeline_names.py", {{scriptLibName, scriptLib}});
}

std::optional<std::string> audioExportScript(const std::string& scriptLib, const std::string& timeline) {
    const auto name = plainName(timeline);
    if (!name)
        return std::nullopt;
    return filled("audio_export_path.py", {{scriptLibName, scriptLib}, {timelineName, *name}});
}

std::optional<std::string> emptyTimelineScript(const std::string& scriptLib, const std::string& name) {
    const auto plain = plainName(name);
    if (!plain)
        return std::nullopt;
    return filled("empty_timeline.py", {{scriptLibName, scriptLib}, {timelineName, *plain}});
}

std::optional<std::string> timelineMediaScript(const std::string& scriptLib, const std::string& timeline) {
    const auto name = escapedName(timeline);
    if (!name)
        return std::nullopt;
    return filled("timeline_media.py", {{scriptLibName, scriptLib}, {timelineName, *name}});
}

std::optional<std::string> timelineClipsScript(const std::string& scriptLib, const std::string& timeline) {
    const auto name = escapedName(timeline);
    if (!name)
        return std::nullopt;
    return filled("timeline_clips.py", {{scriptLibName, scriptLib}, {timelineName, *name}});
}

std::optional<std::string> firstBuildScript(const std::string& scriptLib, const std::string& name,
                                            const std::string& segmentsPath,
                                            const std::vector<std::string>& mediaPaths) {
    const auto escaped = escapedName(name);
    const auto path = plainName(segmentsPath);
    if (!escaped || !path)
        return std::nullopt;
    return filled("first_build.py", {{scriptLibName, scriptLib},
                                     {timelineName, *escaped},
                                     {segmentsPathName, *path},
                                     {mediaPathsName, quotedPathList(mediaPaths)}});
}

std::optional<std::string> finalBuildScript(const std::string& scriptLib, const std::string& name,
                                            const std::string& segmentsPath) {
    const auto escaped = escapedName(name);
    const auto path = plainName(segmentsPath);
    if (!escaped || !path)
        return std::nullopt;
    return filled("final_build.py", {{scriptLibName, scriptLib},
                                     {timelineName, *escaped},
                                     {segmentsPathName, *path},
                                     {subtitleCardsName, embedded("subtitle_cards.py")}});
}

std::string quotedPathList(const std::vector<std::string>& paths) {
    std::vector<std::string> elements;
    for (const auto& path : paths) {
        std::string element = "\"'";
        for (const char c : path)
            element += escapedCharacter(c);
        elements.push_back(element + "'\"");
    }
    return "[" + join(elements, ", ") + "]";
}

} // namespace zuvo
