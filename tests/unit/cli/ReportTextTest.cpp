#include "cli/ReportText.h"

#include <gmock/gmock.h>

namespace zuvo {
namespace {

AuditReport report() {
    AuditReport report;
    report.coveragePercent = 20.8;
    report.usedSegments = {{0.0, 10.0, "a"}};
    report.buriedGold = {{125.5, 158.2, "The winter\nwe lost the boat.", "It turns the story.", 4}};
    report.redundancies = {{50.0, 65.0, 200.0, 215.0, "the harbour"}};
    report.alternates = {{100.0, 120.0, 450.0, 470.0, "Said better", "It is calmer."}};
    report.themeGaps = {"mother", "money"};
    report.confidenceScore = 82.7;
    report.summary = "A tight cut.\r\nIt misses the winter.";
    return report;
}

TEST(ReportText, tellsTheFiguresFirstAndThenEachFinding) {
    EXPECT_EQ(reportText(report()), R"(
Coverage 21% · confidence 82/100 · 1 used
A tight cut.  It misses the winter.

Buried gold (1)
  125.5s–158.2s  weight 4/5  The winter we lost the boat.
      It turns the story.

Said twice (1)
  50.0s–65.0s and 200.0s–215.0s  the harbour

Better takes (1)
  450.0s–470.0s for 100.0s–120.0s  Said better
      It is calmer.

Missing themes (2)
  mother
  money
)");
}

TEST(ReportText, nothingFoundIsSaidOfEachKind) {
    EXPECT_EQ(reportText({}), "\nCoverage 0% · confidence 0/100 · 0 used\n\n\nBuried gold (0)\n\nSaid twice (0)\n"
                              "\nBetter takes (0)\n\nMissing themes (0)\n");
}

} // namespace
} // namespace zuvo
