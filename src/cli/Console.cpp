#include "cli/Console.h"

#include "base/Json.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "cli/ReportText.h"

#include <unistd.h>

namespace zuvo {

namespace {

constexpr const char* resetColour = "\x1b[0m";
constexpr const char* eraseLine = "\r\x1b[K";
constexpr double percent = 100.0;

/// What follows a line end within a line of the log. It is set in as far as the text above it, so that no foreign text
/// can pass for a line of its own, which begins with its time.
constexpr const char* continuation = "\n      ";

std::string_view colourCode(const std::string& color) {
    if (color == LogColor::accent)
        return "\x1b[33m";
    if (color == LogColor::green)
        return "\x1b[32m";
    if (color == LogColor::dim)
        return "\x1b[2m";
    return "";
}

} // namespace

ConsoleForm consoleForm(bool json, bool isTerminal, bool hasNoColor) {
    if (json)
        return ConsoleForm::json;
    return isTerminal && !hasNoColor ? ConsoleForm::terminal : ConsoleForm::plain;
}

void Console::showLog(const PipelineLog& line) {
    if (m_form == ConsoleForm::json) {
        const OrderedJson event = {
            {"event", "log"}, {"time", line.timestamp}, {"text", line.text}, {"color", line.color}};
        write(compactText(event).value_or("{}") + "\n");
        return;
    }
    const auto text = line.timestamp + " " + replaceAll(withoutControlCharacters(line.text), "\n", continuation);
    if (m_form == ConsoleForm::plain) {
        write(text + "\n");
        return;
    }
    write(std::string(eraseLine) + std::string(colourCode(line.color)) + text + resetColour + "\n" + m_progressLine);
}

void Console::showProgress(double progress, std::string_view stepName, std::string_view stepText) {
    if (m_form == ConsoleForm::json) {
        const OrderedJson event = {{"event", "progress"}, {"progress", progress}, {"step", stepName}};
        write(compactText(event).value_or("{}") + "\n");
    } else if (m_form == ConsoleForm::terminal) {
        m_progressLine = fixedText(progress * percent, 0) + "%  " + std::string(stepText);
        write(eraseLine + m_progressLine);
    }
}

void Console::showReport(const AuditReport& report) {
    clearProgress();
    if (m_form == ConsoleForm::json) {
        OrderedJson event = {{"event", "report"}};
        event["report"] = encodeRecord(report);
        write(compactText(event).value_or("{}") + "\n");
    } else {
        write(withoutControlCharacters(reportText(report)));
    }
}

void Console::showStory(const std::string& brief, const std::string& subtitles) {
    clearProgress();
    if (m_form == ConsoleForm::json) {
        const OrderedJson event = {{"event", "story"}, {"brief", brief}, {"subtitles", subtitles}};
        write(compactText(event).value_or("{}") + "\n");
        return;
    }
    const auto text = "\n" + brief + "\n" + subtitles;
    const int file = ::fileno(m_stream);
    write(file >= 0 && ::isatty(file) == 1 ? withoutControlCharacters(text) : text);
}

void Console::showEnd(const RunEnd& end) {
    clearProgress();
    if (m_form != ConsoleForm::json)
        return;
    OrderedJson event = {{"event", "end"}, {"step", end.step}, {"interrupted", end.interrupted}};
    event["exportDir"] = end.exportDir.empty() ? OrderedJson(nullptr) : OrderedJson(end.exportDir);
    if (!end.errorMessage.empty())
        event["errorMessage"] = end.errorMessage;
    if (!end.buildResult.empty())
        event["buildResult"] = end.buildResult;
    write(compactText(event).value_or("{}") + "\n");
}

void Console::clearProgress() {
    if (m_progressLine.empty())
        return;
    m_progressLine.clear();
    write(eraseLine);
}

void Console::write(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), m_stream);
    std::fflush(m_stream);
}

} // namespace zuvo
