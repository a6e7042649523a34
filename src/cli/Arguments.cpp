#include "cli/Arguments.h"

#include "base/Numbers.h"
#include "base/Text.h"
#include "platform/FileSystem.h"

#include <QCommandLineParser>
#include <algorithm>

namespace zuvo {

namespace {

constexpr const char* generalHelp =
    R"(zuvo finds the strongest moments in interview footage and tells them as a story.

  zuvo mine FILE... [style options]            mine these media files
  zuvo mine --timeline NAME [style options]    mine a timeline of the open Resolve project
  zuvo mine --reload NAME [style options]      tell a saved project anew in another style
  zuvo audit --timeline NAME [--mine-first]    what a cut in Resolve has missed; it needs the transcript of a mine
                                               of the same media in this very start, so: --mine-first
  zuvo build                                   build the last story, segments.json, as a timeline in Resolve
  zuvo timelines                               list the timelines of the project open in Resolve
  zuvo export edl|fcpxml|premiere --project NAME [--fps N]
                                               write a project's story for another editing system, at 24 frames a
                                               second unless told otherwise
  zuvo projects                                list the saved projects, newest first
  zuvo projects delete NAME                    remove a project with its exports
  zuvo clear-caches                            remove caches, but not paid-for transcripts
  zuvo keys                                    tell whether both service keys are found
  zuvo --version

style options:
  --mode full-mine|story-mine|structure        the kind of job (full-mine)
  --minutes N                                  length of the story (5, or the project's own)
  --language CODE                              spoken language, such as en or es (auto)
  --preset ID                                  cinema-verite, corporate, roamwell, campfire,
                                               sizzle, essay, outdoor or portrait
  --slider NAME=0..1                           pace, structure, emotion, length, boldness or
                                               silence; repeatable, on top of the preset
  --magic                                      let the material decide the style
  --notes TEXT                                 director's notes, which come before everything else

other options:
  --json                                       one JSON object a line instead of text (mine, audit, build, timelines,
                                               projects)

The exit status is 0 for a finished task, 1 for a failed one, 2 for wrong usage and 130 after Ctrl-C.
)";

/// Frame rates beyond these are typing errors.
constexpr double lowestRate = 1.0;
constexpr double highestRate = 1000.0;

struct UsageError {
    std::string message;
};

QCommandLineOption valueOption(const char* name) {
    return {QString::fromLatin1(name), QString(), QString::fromLatin1(name)};
}

void addStyleOptions(QCommandLineParser& parser) {
    for (const char* name : {"mode", "minutes", "language", "preset", "slider", "notes"})
        parser.addOption(valueOption(name));
    parser.addOption({QStringLiteral("magic"), QString()});
}

std::optional<std::string> value(const QCommandLineParser& parser, const char* name) {
    const auto option = QString::fromLatin1(name);
    if (!parser.isSet(option))
        return std::nullopt;
    return parser.value(option).toStdString();
}

MiningMode parseMode(const std::string& text) {
    for (const auto mode : {MiningMode::fullMine, MiningMode::storyMine, MiningMode::structure}) {
        if (commandLineForm(mode) == text)
            return mode;
    }
    throw UsageError{"--mode takes full-mine, story-mine or structure, not \"" + text + "\""};
}

double parseMinutes(const std::string& text) {
    const auto minutes = parseDouble(text);
    if (!minutes || *minutes <= 0.0)
        throw UsageError{"--minutes takes a number above 0, such as 5 or 2.5, not \"" + text + "\""};
    return *minutes;
}

std::string parseLanguage(const std::string& text) {
    constexpr std::size_t shortestCode = 2;
    constexpr std::size_t longestCode = 3;
    const bool isCode = text.size() >= shortestCode && text.size() <= longestCode &&
                        std::all_of(text.begin(), text.end(), [](char c) { return c >= 'a' && c <= 'z'; });
    if (text != "auto" && !isCode)
        throw UsageError{"--language takes auto or a language code such as en, es or ja, not \"" + text + "\""};
    return text;
}

std::string parsePreset(const std::string& text) {
    if (findPreset(text) != nullptr)
        return text;
    std::vector<std::string> ids;
    for (const auto& preset : STYLE_PRESETS)
        ids.emplace_back(preset.id);
    throw UsageError{"--preset takes one of " + join(ids, ", ") + ", not \"" + text + "\""};
}

std::pair<std::string, double> parseSlider(const std::string& text) {
    const auto equals = text.find('=');
    const auto name = text.substr(0, equals);
    const auto isNamed = [&name](const SliderDefinition& slider) { return slider.id == name; };
    const bool known = std::any_of(SLIDER_DEFINITIONS.begin(), SLIDER_DEFINITIONS.end(), isNamed);
    const auto number = equals == std::string::npos ? std::nullopt : parseDouble(text.substr(equals + 1));
    if (!known || !number || *number < 0.0 || *number > 1.0)
        throw UsageError{"--slider takes NAME=VALUE with a name of pace, structure, emotion, length, boldness or "
                         "silence and a value from 0 to 1, not \"" +
                         text + "\""};
    return {name, *number};
}

StyleOptions styleOptions(const QCommandLineParser& parser) {
    StyleOptions style;
    if (const auto text = value(parser, "mode"))
        style.mode = parseMode(*text);
    if (const auto text = value(parser, "minutes"))
        style.minutes = parseMinutes(*text);
    if (const auto text = value(parser, "language"))
        style.language = parseLanguage(*text);
    if (const auto text = value(parser, "preset"))
        style.presetId = parsePreset(*text);
    for (const auto& text : parser.values(QStringLiteral("slider")))
        style.sliders.push_back(parseSlider(text.toStdString()));
    style.isMagicMode = parser.isSet(QStringLiteral("magic"));
    style.notes = value(parser, "notes").value_or("");
    return style;
}

/// Reads the words by the parser's options; "--help" anywhere asks for help.
void parseWords(QCommandLineParser& parser, const QStringList& words) {
    if (!parser.parse(QStringList(QStringLiteral("zuvo")) + words))
        throw UsageError{parser.errorText().toStdString()};
}

Command parseMine(const QStringList& words) {
    QCommandLineParser parser;
    addStyleOptions(parser);
    parser.addOption(valueOption("timeline"));
    parser.addOption(valueOption("reload"));
    parser.addOption({QStringLiteral("json"), QString()});
    parseWords(parser, words);
    const auto style = styleOptions(parser);
    const bool json = parser.isSet(QStringLiteral("json"));
    const auto timeline = value(parser, "timeline");
    const auto project = value(parser, "reload");
    const auto files = parser.positionalArguments();
    const int sources = int(timeline.has_value()) + int(project.has_value()) + int(!files.isEmpty());
    if (sources == 0)
        throw UsageError{"zuvo mine takes media files, --timeline NAME or --reload NAME"};
    if (sources > 1)
        throw UsageError{"zuvo mine takes either media files, or --timeline NAME, or --reload NAME"};
    if (timeline)
        return MineTimelineCommand{*timeline, style, json};
    if (project)
        return ReloadCommand{*project, style, json};
    MineFilesCommand mine{{}, style, json};
    for (const auto& file : files)
        mine.files.push_back(absolutePath(file.toStdString()));
    return mine;
}

Command parseAudit(const QStringList& words) {
    QCommandLineParser parser;
    parser.addOption(valueOption("timeline"));
    parser.addOption({QStringLiteral("mine-first"), QString()});
    parser.addOption({QStringLiteral("json"), QString()});
    parseWords(parser, words);
    const auto timeline = value(parser, "timeline");
    if (!timeline || !parser.positionalArguments().isEmpty())
        throw UsageError{"write \"zuvo audit --timeline NAME\", with --mine-first to mine that timeline beforehand"};
    return AuditCommand{*timeline, parser.isSet(QStringLiteral("mine-first")), parser.isSet(QStringLiteral("json"))};
}

/// A command that takes --json and nothing else.
template <class WithJson>
Command parseWithJson(const QStringList& words, const char* name) {
    QCommandLineParser parser;
    parser.addOption({QStringLiteral("json"), QString()});
    parseWords(parser, words);
    if (!parser.positionalArguments().isEmpty())
        throw UsageError{std::string("zuvo ") + name + " takes nothing behind it but --json"};
    return WithJson{parser.isSet(QStringLiteral("json"))};
}

std::optional<ExportFormat> exportFormat(const QString& word) {
    if (word == QLatin1String("edl"))
        return ExportFormat::edl;
    if (word == QLatin1String("fcpxml"))
        return ExportFormat::fcpxml;
    if (word == QLatin1String("premiere"))
        return ExportFormat::premiere;
    return std::nullopt;
}

double parseFramesPerSecond(const std::string& text) {
    const auto rate = parseDouble(text);
    if (!rate || *rate < lowestRate || *rate > highestRate)
        throw UsageError{"--fps takes a frame rate from 1 to 1000, such as 25 or 23.976, not \"" + text + "\""};
    return *rate;
}

Command parseExport(const QStringList& words) {
    QCommandLineParser parser;
    parser.addOption(valueOption("project"));
    parser.addOption(valueOption("fps"));
    parseWords(parser, words);
    const auto rest = parser.positionalArguments();
    const auto format = rest.size() == 1 ? exportFormat(rest[0]) : std::nullopt;
    const auto project = value(parser, "project");
    if (!format || !project)
        throw UsageError{"write \"zuvo export edl --project NAME\", with fcpxml or premiere in place of edl"};
    ExportCommand command{*format, *project};
    if (const auto text = value(parser, "fps"))
        command.framesPerSecond = parseFramesPerSecond(*text);
    return command;
}

Command parseProjects(const QStringList& words) {
    QCommandLineParser parser;
    parser.addOption({QStringLiteral("json"), QString()});
    parseWords(parser, words);
    const auto rest = parser.positionalArguments();
    if (rest.isEmpty())
        return ProjectsCommand{parser.isSet(QStringLiteral("json"))};
    if (rest.size() == 2 && rest[0] == QLatin1String("delete"))
        return DeleteProjectCommand{rest[1].toStdString()};
    throw UsageError{"write \"zuvo projects\" or \"zuvo projects delete NAME\""};
}

template <class Simple>
Command parseSimple(const QStringList& words, const char* name) {
    if (!words.isEmpty())
        throw UsageError{std::string("zuvo ") + name + " takes nothing behind it"};
    return Simple{};
}

bool asksForHelp(const QStringList& words) {
    // Behind "--" everything is a file name.
    const auto end = words.indexOf(QStringLiteral("--"));
    const auto options = end < 0 ? words : words.mid(0, end);
    return options.contains(QStringLiteral("--help")) || options.contains(QStringLiteral("-h"));
}

Command parseCommand(const QStringList& words) {
    if (words.isEmpty())
        throw UsageError{"no command given"};
    if (asksForHelp(words) || words[0] == QLatin1String("help"))
        return HelpCommand{generalHelp};
    const auto rest = words.mid(1);
    if (words[0] == QLatin1String("mine"))
        return parseMine(rest);
    if (words[0] == QLatin1String("audit"))
        return parseAudit(rest);
    if (words[0] == QLatin1String("build"))
        return parseWithJson<BuildCommand>(rest, "build");
    if (words[0] == QLatin1String("timelines"))
        return parseWithJson<TimelinesCommand>(rest, "timelines");
    if (words[0] == QLatin1String("export"))
        return parseExport(rest);
    if (words[0] == QLatin1String("projects"))
        return parseProjects(rest);
    if (words[0] == QLatin1String("clear-caches"))
        return parseSimple<ClearCachesCommand>(rest, "clear-caches");
    if (words[0] == QLatin1String("keys"))
        return parseSimple<KeysCommand>(rest, "keys");
    if (words[0] == QLatin1String("--version"))
        return parseSimple<VersionCommand>(rest, "--version");
    throw UsageError{"there is no command \"" + words[0].toStdString() + "\""};
}

} // namespace

Command parseArguments(const QStringList& words) {
    try {
        return parseCommand(words);
    } catch (const UsageError& error) {
        return WrongUsage{"zuvo: " + harmlessText(error.message) + "\nzuvo --help shows what can be written."};
    }
}

StyleSliders slidersOf(const StyleOptions& style, const std::optional<std::string>& presetId) {
    StyleSliders sliders;
    if (const auto* preset = presetId ? findPreset(*presetId) : nullptr)
        sliders = preset->sliders;
    for (const auto& [name, value] : style.sliders) {
        for (const auto& definition : SLIDER_DEFINITIONS) {
            if (definition.id == name)
                sliders.*(definition.keyPath) = value;
        }
    }
    return sliders;
}

} // namespace zuvo
