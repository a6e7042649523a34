#include "cli/ReportText.h"

#include "base/Numbers.h"
#include "base/Text.h"

namespace zuvo {

namespace {

std::string onOneLine(const std::string& text) {
    return trimWhiteSpace(replaceAll(replaceAll(text, "\r", " "), "\n", " "));
}

std::string range(double start, double end) {
    return fixedText(start, 1) + "s–" + fixedText(end, 1) + "s";
}

std::string heading(const char* title, std::size_t count) {
    return std::string("\n") + title + " (" + std::to_string(count) + ")\n";
}

std::string goldText(const std::vector<GoldMoment>& moments) {
    auto text = heading("Buried gold", moments.size());
    for (const auto& moment : moments) {
        text += "  " + range(moment.startTime, moment.endTime) + "  weight " + std::to_string(moment.emotionalWeight) +
                "/5  " + onOneLine(moment.text) + "\n";
        text += "      " + onOneLine(moment.reason) + "\n";
    }
    return text;
}

std::string redundancyText(const std::vector<Redundancy>& redundancies) {
    auto text = heading("Said twice", redundancies.size());
    for (const auto& one : redundancies) {
        text += "  " + range(one.firstStart, one.firstEnd) + " and " + range(one.secondStart, one.secondEnd) + "  " +
                onOneLine(one.topic) + "\n";
    }
    return text;
}

std::string alternateText(const std::vector<AlternateTake>& alternates) {
    auto text = heading("Better takes", alternates.size());
    for (const auto& take : alternates) {
        text += "  " + range(take.alternateStart, take.alternateEnd) + " for " +
                range(take.existingStart, take.existingEnd) + "  " + onOneLine(take.alternateText) + "\n";
        text += "      " + onOneLine(take.reason) + "\n";
    }
    return text;
}

std::string themeText(const std::vector<std::string>& themes) {
    auto text = heading("Missing themes", themes.size());
    for (const auto& theme : themes)
        text += "  " + onOneLine(theme) + "\n";
    return text;
}

} // namespace

std::string reportText(const AuditReport& report) {
    return "\nCoverage " + fixedText(report.coveragePercent, 0) + "% · confidence " +
           std::to_string(truncated(report.confidenceScore)) + "/100 · " + std::to_string(report.usedSegments.size()) +
           " used\n" + onOneLine(report.summary) + "\n" + goldText(report.buriedGold) +
           redundancyText(report.redundancies) + alternateText(report.alternates) + themeText(report.themeGaps);
}

} // namespace zuvo
