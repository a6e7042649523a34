#pragma once

#include "model/AuditReport.h"
#include "model/PipelineLog.h"

#include <cstdio>
#include <string>
#include <string_view>

namespace zuvo {

/// How a run is shown on standard output.
enum class ConsoleForm {
    plain,    ///< "mm:ss text" a line
    terminal, ///< the same in colour, with a line of progress under it
    json,     ///< one JSON object a line
};

/// The form for standard output: colour and progress only on a terminal, never with NO_COLOR.
[[nodiscard]] ConsoleForm consoleForm(bool json, bool isTerminal, bool hasNoColor);

/// What the last line of a run's JSON form tells.
struct RunEnd {
    std::string step;         ///< name of the step that the run ended in
    bool interrupted = false; ///< by the user
    std::string exportDir;    ///< empty for none
    std::string errorMessage; ///< empty for none
    std::string buildResult;  ///< the build's own words; empty for none
};

/// Shows the lines and the progress of a run. Writes to the stream as things come, a whole line at a time.
class Console {
public:
    /// The stream must outlive it.
    Console(ConsoleForm form, std::FILE* stream) : m_form(form), m_stream(stream) {}

    /// Control characters in the text are made harmless.
    void showLog(const PipelineLog& line);
    /// `progress` from 0 to 1; `step` as the pages show it.
    void showProgress(double progress, std::string_view stepName, std::string_view stepText);
    /// What an audit came to: readable text, or an event of its own in the JSON form.
    void showReport(const AuditReport& report);
    /// A story whose files could not be saved: its brief and its subtitles as they would be in their files, or an event
    /// of its own in the JSON form. On a terminal foreign text is made harmless.
    void showStory(const std::string& brief, const std::string& subtitles);
    /// The last line of the JSON form; the others show nothing.
    void showEnd(const RunEnd& end);

    /// Takes the line of progress away, so that other output can follow.
    void clearProgress();

private:
    void write(std::string_view text);

    ConsoleForm m_form;
    std::FILE* m_stream;
    std::string m_progressLine;
};

} // namespace zuvo
