#include "ui/AuditPageModel.h"

#include "base/Numbers.h"
#include "steps/Probing.h"

#include <QVariantMap>
#include <algorithm>
#include <cmath>

namespace zuvo {

namespace {

constexpr double excellentScore = 80.0;
constexpr double goodScore = 60.0;
constexpr double wholePercent = 100.0;
/// More stars than a card is wide say no more; a report is foreign text, and may ask for a billion.
constexpr std::int64_t mostStars = 50;

QString shown(const std::string& text) {
    return QString::fromStdString(text);
}

QString percentText(double percent) {
    return shown(fixedText(percent, 1) + "%");
}

double shareOf(double percent) {
    return std::isnan(percent) ? 0.0 : std::clamp(percent / wholePercent, 0.0, 1.0);
}

QString rangeText(double start, double end) {
    return shown("[" + formatDuration(start) + " → " + formatDuration(end) + "]");
}

QVariantMap cardOf(const GoldMoment& moment) {
    return {{QStringLiteral("id"), shown(moment.id())},
            {QStringLiteral("text"), shown(moment.text)},
            {QStringLiteral("range"), rangeText(moment.startTime, moment.endTime)},
            {QStringLiteral("length"), shown(std::to_string(truncated(moment.endTime - moment.startTime)) + "s")},
            {QStringLiteral("stars"), static_cast<int>(std::clamp(moment.emotionalWeight, std::int64_t{0}, mostStars))},
            {QStringLiteral("reason"), shown(moment.reason)}};
}

} // namespace

AuditVerdict auditVerdict(double confidenceScore) {
    if (confidenceScore >= excellentScore)
        return AuditVerdict::excellent;
    return confidenceScore >= goodScore ? AuditVerdict::good : AuditVerdict::majorGaps;
}

std::string_view confidenceMessage(AuditVerdict verdict) {
    switch (verdict) {
    case AuditVerdict::excellent:
        return "Excellent coverage — only minor gems missing";
    case AuditVerdict::good:
        return "Good coverage — some significant moments unused";
    case AuditVerdict::majorGaps:
        break;
    }
    return "Major gaps — review buried gold carefully";
}

void AuditPageModel::setFlow(MineViewModel* flow) {
    if (m_flow == flow)
        return;
    disconnect(m_connection);
    m_flow = flow;
    if (!m_flow.isNull()) {
        m_connection =
            connect(m_flow->pipeline().get(), &LocalPipeline::auditReportChanged, this, &AuditPageModel::takeReport);
        takeReport();
    }
    Q_EMIT flowChanged();
}

void AuditPageModel::takeReport() {
    if (m_flow.isNull())
        return;
    if (const auto& report = m_flow->pipeline()->auditReport()) {
        m_report = *report;
        Q_EMIT reportChanged();
    }
}

QString AuditPageModel::summary() const {
    return shown(m_report.summary);
}

QString AuditPageModel::coverage() const {
    return percentText(m_report.coveragePercent);
}

double AuditPageModel::coverageShare() const {
    return shareOf(m_report.coveragePercent);
}

QString AuditPageModel::usedClips() const {
    return shown(std::to_string(m_report.usedSegments.size()) + " clips");
}

QString AuditPageModel::unused() const {
    return percentText(wholePercent - m_report.coveragePercent);
}

QString AuditPageModel::confidence() const {
    return shown(std::to_string(truncated(m_report.confidenceScore)) + "/100");
}

double AuditPageModel::confidenceShare() const {
    return shareOf(m_report.confidenceScore);
}

QString AuditPageModel::confidenceText() const {
    const auto text = zuvo::confidenceMessage(auditVerdict(m_report.confidenceScore));
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString AuditPageModel::verdict() const {
    switch (auditVerdict(m_report.confidenceScore)) {
    case AuditVerdict::excellent:
        return QStringLiteral("excellent");
    case AuditVerdict::good:
        return QStringLiteral("good");
    case AuditVerdict::majorGaps:
        break;
    }
    return QStringLiteral("majorGaps");
}

QString AuditPageModel::momentCount() const {
    return shown(std::to_string(m_report.buriedGold.size()) + " moments");
}

QVariantList AuditPageModel::buriedGold() const {
    QVariantList list;
    for (const auto& moment : m_report.buriedGold)
        list.append(cardOf(moment));
    return list;
}

QVariantList AuditPageModel::redundancies() const {
    QVariantList list;
    for (const auto& pair : m_report.redundancies)
        list.append(QVariantMap{{QStringLiteral("topic"), shown(pair.topic)},
                                {QStringLiteral("first"), rangeText(pair.firstStart, pair.firstEnd)},
                                {QStringLiteral("second"), rangeText(pair.secondStart, pair.secondEnd)}});
    return list;
}

QVariantList AuditPageModel::alternates() const {
    QVariantList list;
    for (const auto& take : m_report.alternates)
        list.append(QVariantMap{{QStringLiteral("current"), rangeText(take.existingStart, take.existingEnd)},
                                {QStringLiteral("better"), rangeText(take.alternateStart, take.alternateEnd)},
                                {QStringLiteral("text"), shown(take.alternateText)},
                                {QStringLiteral("reason"), shown(take.reason)}});
    return list;
}

QStringList AuditPageModel::themeGaps() const {
    QStringList list;
    for (const auto& gap : m_report.themeGaps)
        list.append(shown(gap));
    return list;
}

QString AuditPageModel::addText() const {
    return QStringLiteral("Add %1 moments to timeline").arg(m_selectedMoments.size());
}

void AuditPageModel::toggleExpanded(const QString& id) {
    m_expandedGold = m_expandedGold == id ? QString() : id;
    Q_EMIT expandedGoldChanged();
}

void AuditPageModel::toggleSelected(const QString& id) {
    if (m_selectedMoments.removeAll(id) == 0)
        m_selectedMoments.append(id);
    Q_EMIT selectedMomentsChanged();
}

void AuditPageModel::rebuild() {
    if (!m_flow.isNull())
        m_flow->buildTimeline();
}

void AuditPageModel::startOver() {
    if (!m_flow.isNull())
        m_flow->resetFlow();
}

} // namespace zuvo
