#pragma once

#include "ui/MineViewModel.h"
#include "ui/RowListModel.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QUuid>
#include <QVariantList>
#include <memory>
#include <qqmlregistration.h>

namespace zuvo {

class ProbeGate;

/// The page "Into the Mine": where the footage comes from, how it is mined, and the mines that can be opened again.
///
/// The choices themselves are the flow's. A probe that the page has started goes on without it: its result is the
/// flow's too.
class SetupPageModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(zuvo::MineViewModel* flow READ flow WRITE setFlow NOTIFY flowChanged)
    Q_PROPERTY(zuvo::RowListModel* files READ files CONSTANT)
    Q_PROPERTY(zuvo::RowListModel* recentMines READ recentMines CONSTANT)
    Q_PROPERTY(bool isFromFiles READ isFromFiles NOTIFY sourceChanged)
    Q_PROPERTY(bool hasFiles READ hasFiles NOTIFY sourceChanged)
    Q_PROPERTY(QString fileCountText READ fileCountText NOTIFY sourceChanged)
    Q_PROPERTY(bool sourceReady READ sourceReady NOTIFY sourceChanged)
    Q_PROPERTY(bool actionEnabled READ actionEnabled NOTIFY sourceChanged)
    Q_PROPERTY(bool isConnected READ isConnected NOTIFY sourceChanged)
    Q_PROPERTY(QString connectionTitle READ connectionTitle NOTIFY sourceChanged)
    Q_PROPERTY(QString connectionDetail READ connectionDetail NOTIFY sourceChanged)
    Q_PROPERTY(bool hasTimelines READ hasTimelines NOTIFY sourceChanged)
    Q_PROPERTY(QStringList timelineRows READ timelineRows NOTIFY sourceChanged)
    Q_PROPERTY(int timelineRow READ timelineRow NOTIFY sourceChanged)
    Q_PROPERTY(QString timelineName READ timelineName NOTIFY sourceChanged)
    Q_PROPERTY(QVariantList modes READ modes CONSTANT)
    Q_PROPERTY(int mode READ mode NOTIFY choicesChanged)
    Q_PROPERTY(bool isAudit READ isAudit NOTIFY choicesChanged)
    Q_PROPERTY(QString actionText READ actionText NOTIFY choicesChanged)
    Q_PROPERTY(QStringList languages READ languages CONSTANT)
    Q_PROPERTY(int language READ language NOTIFY choicesChanged)
    Q_PROPERTY(double targetMinutes READ targetMinutes NOTIFY choicesChanged)
    Q_PROPERTY(QString targetText READ targetText NOTIFY choicesChanged)
    Q_PROPERTY(QString creditsText READ creditsText NOTIFY choicesChanged)
    Q_PROPERTY(QStringList fileFilters READ fileFilters CONSTANT)
public:
    explicit SetupPageModel(QObject* parent = nullptr);

    [[nodiscard]] MineViewModel* flow() const { return m_flow; }
    void setFlow(MineViewModel* flow);

    // The source.

    /// Roles: fileId, filename, symbol, isProbing, durationText (empty until it is known), sampleRateText (likewise),
    /// sizeText.
    [[nodiscard]] RowListModel* files() { return &m_files; }
    [[nodiscard]] bool isFromFiles() const;
    [[nodiscard]] bool hasFiles() const;
    [[nodiscard]] QString fileCountText() const; ///< "1 file", "2 files"
    /// There is something to choose a mode for.
    [[nodiscard]] bool sourceReady() const;
    /// There is something to mine.
    [[nodiscard]] bool actionEnabled() const;

    Q_INVOKABLE void chooseFiles();
    Q_INVOKABLE void chooseResolve();

    /// Takes what was dropped: files of an accepted type that are not in the list yet, each probed by a task of its
    /// own. Anything else is left out without a word. The tasks run beside each other; of very many files only some
    /// are asked about at once, as each takes a process.
    Q_INVOKABLE void handleDrop(const QList<QUrl>& urls);
    /// What the file dialog gave, in its order.
    Q_INVOKABLE void addChosenFiles(const QList<QUrl>& urls);
    Q_INVOKABLE void removeFile(const QString& fileId);
    Q_INVOKABLE void clearFiles();
    [[nodiscard]] static QStringList fileFilters(); ///< name filters for the file dialog

    [[nodiscard]] static bool isAccepted(const QUrl& url); ///< by its extension alone, in any case
    /// "film" or "waveform".
    [[nodiscard]] static QString symbolFor(const QUrl& url);
    /// Whole minutes and the whole seconds that remain: "42:18", "60:00" for an hour.
    [[nodiscard]] static QString formatDuration(double seconds);

    // DaVinci Resolve.

    [[nodiscard]] bool isConnected() const;
    [[nodiscard]] QString connectionTitle() const;
    [[nodiscard]] QString connectionDetail() const;
    [[nodiscard]] bool hasTimelines() const;
    /// The first stands for none.
    [[nodiscard]] QStringList timelineRows() const;
    /// 0 for none, -1 for one that Resolve does not list.
    [[nodiscard]] int timelineRow() const;
    [[nodiscard]] QString timelineName() const; ///< empty for none
    Q_INVOKABLE void chooseTimeline(int row);
    /// Connects anew and asks for the timelines.
    Q_INVOKABLE void refresh();

    // The choices.

    /// A map with `label`, `subtitle` and `color` (a name in Theme) for each mode.
    [[nodiscard]] static QVariantList modes();
    [[nodiscard]] int mode() const;
    Q_INVOKABLE void chooseMode(int mode);
    [[nodiscard]] bool isAudit() const;
    [[nodiscard]] QString actionText() const;
    [[nodiscard]] static QStringList languages();
    [[nodiscard]] int language() const;
    Q_INVOKABLE void chooseLanguage(int language);
    [[nodiscard]] double targetMinutes() const;
    Q_INVOKABLE void chooseTargetMinutes(double minutes);
    [[nodiscard]] QString targetText() const;
    [[nodiscard]] QString creditsText() const; ///< "~1 credit", "~3 credits"

    // Going on.

    /// The main button: to the style, or straight to an audit. Nothing unless it is enabled.
    Q_INVOKABLE void act();

    /// The first three of the saved projects. Roles: name, hasResults, countText, targetText, presetId (may be empty).
    [[nodiscard]] RowListModel* recentMines() { return &m_recentMines; }
    Q_INVOKABLE void loadMine(int row);
    /// Deletes at once; the list is read anew.
    Q_INVOKABLE void deleteMine(int row);

Q_SIGNALS:
    void flowChanged();
    void sourceChanged();
    void choicesChanged();

private:
    void startProbe(const DroppedFile& file);
    void listFiles();
    [[nodiscard]] QString sizeTextOf(const DroppedFile& file);
    void listRecentMines();

    QPointer<MineViewModel> m_flow;
    /// What a row says of a file's size, so that the disk is not asked of every file whenever one of them changes.
    struct ShownSize {
        QString text;
        bool isProbing = true; ///< when it was read
    };

    std::shared_ptr<ProbeGate> m_probeGate;
    QHash<QUuid, ShownSize> m_sizes;
    RowListModel m_files;
    RowListModel m_recentMines;
};

} // namespace zuvo
