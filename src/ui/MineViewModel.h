#pragma once

#include "account/CloudProcessor.h"
#include "model/Modes.h"
#include "model/Stores.h"
#include "model/Style.h"
#include "pipeline/LocalPipeline.h"
#include "platform/Clock.h"
#include "platform/DesktopOpener.h"
#include "platform/MineLock.h"
#include "resolve/ResolveBridge.h"
#include "ui/DroppedFile.h"
#include "ui/MineStep.h"

#include <QObject>
#include <QString>
#include <QTimer>
#include <QUrl>
#include <QVariantList>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <qqmlregistration.h>
#include <string>
#include <string_view>
#include <vector>

namespace zuvo {

class AuthManager;

/// What a flow works with. Each flow has its own bridge, processor and pipeline; the account is everybody's.
struct MineTools {
    std::shared_ptr<AuthManager> authManager;
    std::shared_ptr<ResolveBridge> resolveBridge;
    std::shared_ptr<CloudProcessor> cloudProcessor;
    std::shared_ptr<LocalPipeline> pipeline;
    Clock clock;
    std::shared_ptr<DesktopOpener> desktop;
};

/// The guided flow of one mine: every choice that the user makes for it, the pipeline that it drives, and which page
/// stands on screen. Pages change their bindings and call back; every change of page goes through `advanceTo`.
///
/// It may be destroyed while a mine that it started goes on: the mine holds what it works with and ends by itself.
class MineViewModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The shell makes one for each showing of The Mine")
    Q_PROPERTY(int currentStep READ currentStepNumber NOTIFY currentStepChanged)
    Q_PROPERTY(QString pageName READ pageName NOTIFY pageNameChanged)
    Q_PROPERTY(QVariantList steps READ steps NOTIFY currentStepChanged)
    Q_PROPERTY(QString noticeTitle READ noticeTitle NOTIFY noticeChanged)
    Q_PROPERTY(QString noticeText READ noticeText NOTIFY noticeChanged)
    Q_PROPERTY(bool canSaveCopy READ canSaveCopy NOTIFY noticeChanged)
    Q_PROPERTY(double estimatedCredits READ estimatedCredits NOTIFY estimatedCreditsChanged)
    Q_PROPERTY(QString otherMine READ otherMine NOTIFY otherMineChanged)
    Q_PROPERTY(bool isWaitingForOtherMine READ isWaitingForOtherMine NOTIFY otherMineChanged)
public:
    explicit MineViewModel(MineTools tools, QObject* parent = nullptr);

    // Where the flow stands.

    [[nodiscard]] MineStep currentStep() const { return m_currentStep; }
    [[nodiscard]] int currentStepNumber() const { return static_cast<int>(m_currentStep); }

    /// "SetupPage", "StylePage", "ProcessingPage", "ReviewPage", "AuditPage", "DonePage", or "NoAuditReport" where an
    /// audit has nothing to show.
    [[nodiscard]] const QString& pageName() const { return m_pageName; }

    /// For the step indicator: a map with `label`, `number` (from 1) and `state` ("passed", "current", "ahead") a step.
    [[nodiscard]] QVariantList steps() const;

    /// Goes to that page; nothing else changes.
    void advanceTo(MineStep step);

    /// A tap on a step of the indicator, by its place from 0: goes back to one that is passed, else does nothing.
    Q_INVOKABLE void tapStep(int step);

    // What the user has chosen. Setters signal only a change.

    [[nodiscard]] const std::optional<std::string>& selectedTimeline() const { return m_selectedTimeline; }
    [[nodiscard]] MiningMode selectedMode() const { return m_selectedMode; }
    [[nodiscard]] double targetMinutes() const { return m_targetMinutes; }
    [[nodiscard]] const StyleSliders& styleSliders() const { return m_styleSliders; }
    [[nodiscard]] const std::optional<std::string>& selectedPresetId() const { return m_selectedPresetId; }
    [[nodiscard]] const std::string& referenceURL() const { return m_referenceURL; }
    [[nodiscard]] bool isMagicMode() const { return m_isMagicMode; }
    [[nodiscard]] const std::string& directorNotes() const { return m_directorNotes; }
    [[nodiscard]] const std::string& selectedLanguage() const { return m_selectedLanguage; } ///< a code of LANGUAGES
    [[nodiscard]] std::optional<int> rating() const { return m_rating; }
    [[nodiscard]] const std::optional<SavedProject>& loadedProject() const { return m_loadedProject; }
    [[nodiscard]] const std::vector<SavedProject>& savedProjects() const { return m_savedProjects; }
    [[nodiscard]] const std::vector<DroppedFile>& droppedFiles() const { return m_droppedFiles; }
    [[nodiscard]] SourceMode sourceMode() const { return m_sourceMode; }

    void setSelectedTimeline(std::optional<std::string> timeline);
    void setSelectedMode(MiningMode mode);
    void setTargetMinutes(double minutes);
    void setStyleSliders(const StyleSliders& sliders);
    void setSelectedPresetId(std::optional<std::string> presetId);
    void setReferenceURL(std::string url);
    void setMagicMode(bool isOn);
    void setDirectorNotes(std::string notes);
    void setSelectedLanguage(std::string code);
    void setRating(std::optional<int> rating);
    void setDroppedFiles(std::vector<DroppedFile> files);
    void setSourceMode(SourceMode mode);
    /// What a probe came to, for the dropped file of that id; nothing happens if that was removed meanwhile.
    void finishProbe(const QUuid& id, std::optional<ProbeResult> result);
    /// Lists the saved projects anew.
    void listProjects();

    /// Whole credits that a mine of this mode and length is thought to cost; it limits nothing.
    [[nodiscard]] double estimatedCredits() const { return m_estimatedCredits; }

    // What the user has to be told at once, whatever page is on screen: results that could not be saved, media that
    // count as missing, a name that no mine can have. Empty texts if there is nothing.

    [[nodiscard]] const QString& noticeTitle() const { return m_notice.title; }
    [[nodiscard]] const QString& noticeText() const { return m_notice.text; }
    /// Whether the notice is of a story that is in memory alone.
    [[nodiscard]] bool canSaveCopy() const { return m_notice.canSaveCopy; }
    Q_INVOKABLE void dismissNotice();
    /// Writes that story into the folder; the notice then says where it is, or why it is not there.
    Q_INVOKABLE void saveCopy(const QUrl& folder);
    /// Whether the last mine could not save its file of that name, so that what lies there is another story's.
    [[nodiscard]] bool isUnsaved(std::string_view fileName) const;

    // Another program may be mining in the same cache folder. What would disturb it is put off then, and the user is
    // asked whether to wait.

    /// Why something is put off: "Another mine is running (zuvo, process 4711)". Empty if nothing is.
    [[nodiscard]] const QString& otherMine() const { return m_otherMine; }
    /// The user wants to wait for it; else, with `otherMine` set, the question is open.
    [[nodiscard]] bool isWaitingForOtherMine() const { return m_lockTimer.isActive(); }
    /// From now on the lock is asked for again and again; what was put off starts as soon as it is free.
    Q_INVOKABLE void waitForOtherMine();
    /// Forgets what was put off. A mine that has not begun leads back to the style.
    Q_INVOKABLE void giveUpWaiting();

    // What the pages show.

    [[nodiscard]] const std::shared_ptr<LocalPipeline>& pipeline() const { return m_tools.pipeline; }
    [[nodiscard]] const std::shared_ptr<ResolveBridge>& resolveBridge() const { return m_tools.resolveBridge; }
    [[nodiscard]] const std::shared_ptr<DesktopOpener>& desktop() const { return m_tools.desktop; }
    [[nodiscard]] std::vector<StorySegment> reviewSegments() const;
    [[nodiscard]] std::vector<std::string> mediaPaths() const;
    [[nodiscard]] std::vector<TranscriptSegment> fullTranscript() const;

    // What the pages call back.

    /// The view has come on screen: the projects are listed and Resolve is asked for its timelines.
    Q_INVOKABLE void show();

    Q_INVOKABLE void setupNext();
    Q_INVOKABLE void startAudit();
    /// Media whose paths are not absolute count as missing, with a notice.
    void loadProject(const SavedProject& saved);
    Q_INVOKABLE void styleBack();
    Q_INVOKABLE void styleNext();
    Q_INVOKABLE void processingDone();
    /// The run is told to stop and the pipeline's state put back, in this order, which lets the run go on unseen: its
    /// end moves this flow no more. A run that has not begun yet does not begin.
    Q_INVOKABLE void cancelMining();
    Q_INVOKABLE void buildTimeline();
    /// The edited story, in the user's order, becomes the result and the hand-off file, and is built.
    void sendToResolve(std::vector<StorySegment> segments);
    Q_INVOKABLE void reanalyze();
    Q_INVOKABLE void skipToExport();
    Q_INVOKABLE void backToReview();
    /// Prepares another analysis of the same footage.
    Q_INVOKABLE void restyle();
    /// For the next mine: every choice stays but the rating and the project that was loaded.
    Q_INVOKABLE void resetFlow();
    /// The same with the caches cleared in place of the pipeline's state.
    Q_INVOKABLE void startFresh();

Q_SIGNALS:
    void currentStepChanged();
    void pageNameChanged();
    void selectedTimelineChanged();
    void selectedModeChanged();
    void targetMinutesChanged();
    void styleSlidersChanged();
    void selectedPresetIdChanged();
    void referenceURLChanged();
    void magicModeChanged();
    void directorNotesChanged();
    void selectedLanguageChanged();
    void ratingChanged();
    void loadedProjectChanged();
    void savedProjectsChanged();
    void droppedFilesChanged();
    void sourceModeChanged();
    void estimatedCreditsChanged();
    void otherMineChanged();
    void noticeChanged();

private:
    struct Notice {
        QString title;
        QString text;
        bool canSaveCopy = false;

        bool operator==(const Notice&) const = default;
    };

    void setNotice(Notice notice);
    /// After a run that is complete: what it could not save.
    void reportUnsaved(std::vector<UnsavedFile> unsaved);
    /// Of the run that the choices ask for; "" for one that saves nothing.
    [[nodiscard]] std::string chosenName() const;

    using LockedAction = std::function<void(const std::shared_ptr<MineLock>& lock)>;

    /// Something that waits for the lock of the cache folder.
    struct PutOff {
        LockedAction action;
        std::function<void()> onGivenUp;
    };

    /// Does it at once while this program has the lock or can have it; else puts it off.
    void withMineLock(LockedAction action, std::function<void()> onGivenUp = {});
    void askForLockAgain();
    void sendToResolveNow(const std::vector<StorySegment>& segments);
    void setPutOff(PutOff putOff, const std::string& reason);

    [[nodiscard]] QString wantedPageName() const;
    void followPageName();
    void followEstimate();
    /// Starts the run that the choices ask for, if they name footage. Its good end leads to the review.
    void startMining();
    /// The run over the footage that is chosen now, to be begun while this flow is there; nothing without footage. The
    /// style is read when it begins.
    [[nodiscard]] std::function<QCoro::Task<>()> chosenRun() const;
    [[nodiscard]] QCoro::Task<> mineAndGoOn(const std::function<QCoro::Task<>()>& begin,
                                            std::shared_ptr<MineLock> lock);
    [[nodiscard]] MineChoices mineChoices() const;
    [[nodiscard]] StoryChoices storyChoices() const;
    [[nodiscard]] SavedProject projectOfThisRun() const;
    void setLoadedProject(std::optional<SavedProject> project);
    void beginAgain();

    template <class Value>
    void set(Value& member, Value value, void (MineViewModel::*changed)());

    MineTools m_tools;
    MineStep m_currentStep = MineStep::setup;
    std::optional<std::string> m_selectedTimeline;
    MiningMode m_selectedMode = MiningMode::fullMine;
    double m_targetMinutes = 5.0;
    StyleSliders m_styleSliders;
    std::optional<std::string> m_selectedPresetId;
    std::string m_referenceURL;
    bool m_isMagicMode = false;
    std::string m_directorNotes;
    std::string m_selectedLanguage = "auto";
    std::optional<int> m_rating;
    std::optional<SavedProject> m_loadedProject;
    std::vector<SavedProject> m_savedProjects;
    std::vector<DroppedFile> m_droppedFiles;
    SourceMode m_sourceMode = SourceMode::files;
    QString m_pageName;
    double m_estimatedCredits = 0.0;
    Notice m_notice;
    std::vector<UnsavedFile> m_unsaved;       ///< by the last mine of this flow
    std::vector<PromisedFile> m_unsavedStory; ///< all files of that mine
    PutOff m_putOff;
    QString m_otherMine;
    QTimer m_lockTimer;              ///< runs while the lock is waited for
    std::uint64_t m_cancelCount = 0; ///< a run that was cancelled moves the flow no more
};

} // namespace zuvo
