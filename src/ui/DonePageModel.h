#pragma once

#include "exporters/StoryExport.h"
#include "ui/MineViewModel.h"

#include <QMetaObject>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <qqmlregistration.h>
#include <vector>

namespace zuvo {

/// "Daylight": what a mine came to, what it saved, its build, its exports, its rating and the earlier mines of the same
/// footage. Its own state, whether a build runs and the status line, ends with it.
class DonePageModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(zuvo::MineViewModel* flow READ flow WRITE setFlow NOTIFY flowChanged)
    Q_PROPERTY(bool hasResults READ hasResults NOTIFY storyChanged)
    Q_PROPERTY(QString momentsLine READ momentsLine NOTIFY storyChanged)
    Q_PROPERTY(QVariantList acts READ acts NOTIFY storyChanged)
    Q_PROPERTY(QVariantList stats READ stats NOTIFY storyChanged)
    Q_PROPERTY(bool hasSavedTime READ hasSavedTime NOTIFY savedTimeChanged)
    Q_PROPERTY(QString savedTime READ savedTime NOTIFY savedTimeChanged)
    Q_PROPERTY(QString savedTimeBasis READ savedTimeBasis NOTIFY savedTimeChanged)
    Q_PROPERTY(bool isBuilding READ isBuilding NOTIFY buildChanged)
    Q_PROPERTY(QString buildText READ buildText NOTIFY buildChanged)
    Q_PROPERTY(QString buildStatus READ buildStatus NOTIFY buildChanged)
    Q_PROPERTY(bool isBuildStatusBad READ isBuildStatusBad NOTIFY buildChanged)
    Q_PROPERTY(bool isMagicMode READ isMagicMode NOTIFY magicModeChanged)
    Q_PROPERTY(QString magicExplanation READ magicExplanation CONSTANT)
    Q_PROPERTY(QVariantList versions READ versions NOTIFY versionsChanged)
    Q_PROPERTY(QVariantList plainExports READ plainExports CONSTANT)
    Q_PROPERTY(QVariantList storyExports READ storyExports CONSTANT)
    Q_PROPERTY(QVariantList ratings READ ratings NOTIFY ratingChanged)
public:
    using QObject::QObject;

    [[nodiscard]] MineViewModel* flow() const { return m_flow; }
    /// What the flow's pipeline holds by then counts as published.
    void setFlow(MineViewModel* flow);

    // The story. Without results there is nothing to tell: texts and lists are empty.

    [[nodiscard]] bool hasResults() const;
    [[nodiscard]] QString momentsLine() const;
    /// A map with `name`, `chapters` (a list of texts) and `gems` an act: for each chapter the place of its colour, to
    /// be counted round and round in the list of gems. A chapter has one colour in all acts.
    [[nodiscard]] QVariantList acts() const;
    /// A map with `symbol`, `label` and `value` a tile.
    [[nodiscard]] QVariantList stats() const;

    // What logging by hand would have taken.

    [[nodiscard]] bool hasSavedTime() const;
    [[nodiscard]] QString savedTime() const;
    [[nodiscard]] QString savedTimeBasis() const;

    // The build.

    [[nodiscard]] bool isBuilding() const { return m_isBuilding; }
    [[nodiscard]] QString buildText() const;
    [[nodiscard]] QString buildStatus() const { return m_buildStatus; } ///< empty if there is none
    [[nodiscard]] bool isBuildStatusBad() const;

    [[nodiscard]] bool isMagicMode() const;
    [[nodiscard]] static QString magicExplanation();

    /// A map with `version` ("v3"), `segments`, `date` and `isCurrent` for each mine in the export folder, ascending.
    [[nodiscard]] QVariantList versions() const { return m_versions; }
    /// A map with `symbol` and `label` for each file that the mine has written.
    [[nodiscard]] static QVariantList plainExports();
    /// A map with `symbol`, `label` and `line` for each form that is written on demand.
    [[nodiscard]] static QVariantList storyExports();
    /// A map with `label`, `symbol`, `isChosen` and `isGood` for each of the two ratings.
    [[nodiscard]] QVariantList ratings() const;

    /// How many of an act's chips are shown, given their widths, the room in a row and the width of the chip that tells
    /// how many are left out. All of them, if two rows hold all.
    Q_INVOKABLE [[nodiscard]] static int shownChips(const QVariantList& widths, double room, double spacing,
                                                    double restWidth);

    // What the user does. Nothing happens without an export folder, or without results where they are needed.

    Q_INVOKABLE void build();
    Q_INVOKABLE void openExport(int index);
    Q_INVOKABLE void openExportFolder();
    /// Writes the form at that place of `storyExports` and shows the file; a failure stands in the status line.
    Q_INVOKABLE void exportStory(int index);
    /// The rating at that place of `ratings`.
    Q_INVOKABLE void rate(int index);

Q_SIGNALS:
    void flowChanged();
    void storyChanged();
    void savedTimeChanged();
    void buildChanged();
    void magicModeChanged();
    void versionsChanged();
    void ratingChanged();

private:
    [[nodiscard]] const MiningResults* results() const;
    [[nodiscard]] double sourceHours() const;
    [[nodiscard]] double savedHours() const;
    void follow();
    void takeBuildResult();
    void takeVersions();
    void setBuildState(bool isBuilding, const QString& status);
    void open(const std::string& path);

    QPointer<MineViewModel> m_flow;
    std::vector<QMetaObject::Connection> m_connections;
    bool m_isBuilding = false;
    QString m_buildStatus;
    QVariantList m_versions;
};

/// How many chips, laid from left to right and broken into rows, are shown; if not all fit into the rows, the last row
/// ends with one more chip of `restWidth` that tells how many are left out. Widths in the unit of `room`.
[[nodiscard]] int chipsThatFit(const std::vector<double>& widths, double room, double spacing, double restWidth,
                               int rows);

} // namespace zuvo
