#pragma once

#include "model/AuditReport.h"
#include "ui/MineViewModel.h"

#include <QMetaObject>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <qqmlregistration.h>
#include <string>
#include <string_view>

namespace zuvo {

/// What an audit's confidence comes to.
enum class AuditVerdict { excellent, good, majorGaps };

/// 80 and more is excellent, below 60 there are major gaps.
[[nodiscard]] AuditVerdict auditVerdict(double confidenceScore);
[[nodiscard]] std::string_view confidenceMessage(AuditVerdict verdict);

/// What an audit found in a cut, and which of the moments that it left out the user has picked. What is picked and what
/// is opened ends with the page.
class AuditPageModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(zuvo::MineViewModel* flow READ flow WRITE setFlow NOTIFY flowChanged)
    Q_PROPERTY(QString summary READ summary NOTIFY reportChanged)
    Q_PROPERTY(QString coverage READ coverage NOTIFY reportChanged)
    Q_PROPERTY(double coverageShare READ coverageShare NOTIFY reportChanged)
    Q_PROPERTY(QString usedClips READ usedClips NOTIFY reportChanged)
    Q_PROPERTY(QString unused READ unused NOTIFY reportChanged)
    Q_PROPERTY(QString confidence READ confidence NOTIFY reportChanged)
    Q_PROPERTY(double confidenceShare READ confidenceShare NOTIFY reportChanged)
    Q_PROPERTY(QString confidenceMessage READ confidenceText NOTIFY reportChanged)
    Q_PROPERTY(QString verdict READ verdict NOTIFY reportChanged)
    Q_PROPERTY(QString momentCount READ momentCount NOTIFY reportChanged)
    Q_PROPERTY(QVariantList buriedGold READ buriedGold NOTIFY reportChanged)
    Q_PROPERTY(QVariantList redundancies READ redundancies NOTIFY reportChanged)
    Q_PROPERTY(QVariantList alternates READ alternates NOTIFY reportChanged)
    Q_PROPERTY(QStringList themeGaps READ themeGaps NOTIFY reportChanged)
    Q_PROPERTY(QString expandedGold READ expandedGold NOTIFY expandedGoldChanged)
    Q_PROPERTY(QStringList selectedMoments READ selectedMoments NOTIFY selectedMomentsChanged)
    Q_PROPERTY(bool canAdd READ canAdd NOTIFY selectedMomentsChanged)
    Q_PROPERTY(QString addText READ addText NOTIFY selectedMomentsChanged)
public:
    using QObject::QObject;

    [[nodiscard]] MineViewModel* flow() const { return m_flow; }
    /// The page shows the report of the flow's pipeline, and keeps the last one should that go.
    void setFlow(MineViewModel* flow);

    [[nodiscard]] QString summary() const;
    [[nodiscard]] QString coverage() const;       ///< "37.4%"
    [[nodiscard]] double coverageShare() const;   ///< of the bar: 0 to 1, whatever the report says
    [[nodiscard]] QString usedClips() const;      ///< "14 clips"
    [[nodiscard]] QString unused() const;         ///< "62.6%"
    [[nodiscard]] QString confidence() const;     ///< "72/100", truncated
    [[nodiscard]] double confidenceShare() const; ///< of the bar, 0 to 1
    [[nodiscard]] QString confidenceText() const;
    [[nodiscard]] QString verdict() const; ///< "excellent", "good" or "majorGaps"

    [[nodiscard]] QString momentCount() const; ///< "3 moments"
    /// A map with `id`, `text`, `range` ("[2:05 → 2:31]"), `length` ("25s"), `stars` and `reason` a moment.
    [[nodiscard]] QVariantList buriedGold() const;
    /// A map with `topic`, `first` and `second` (ranges) a pair.
    [[nodiscard]] QVariantList redundancies() const;
    /// A map with `current` and `better` (ranges), `text` and `reason` a take.
    [[nodiscard]] QVariantList alternates() const;
    [[nodiscard]] QStringList themeGaps() const;

    [[nodiscard]] QString expandedGold() const { return m_expandedGold; }           ///< the open moment's id, or empty
    [[nodiscard]] QStringList selectedMoments() const { return m_selectedMoments; } ///< ids, each once
    [[nodiscard]] bool canAdd() const { return !m_selectedMoments.isEmpty(); }
    [[nodiscard]] QString addText() const;

    /// A tap on a moment: opens it, and closes the one that was open.
    Q_INVOKABLE void toggleExpanded(const QString& id);
    Q_INVOKABLE void toggleSelected(const QString& id);
    /// Builds the segments file as it lies: what is picked is not handed on.
    Q_INVOKABLE void rebuild();
    Q_INVOKABLE void startOver();

Q_SIGNALS:
    void flowChanged();
    void reportChanged();
    void expandedGoldChanged();
    void selectedMomentsChanged();

private:
    void takeReport();

    QPointer<MineViewModel> m_flow;
    QMetaObject::Connection m_connection;
    AuditReport m_report;
    QString m_expandedGold;
    QStringList m_selectedMoments;
};

} // namespace zuvo
