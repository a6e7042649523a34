#pragma once

#include "ui/MineViewModel.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <cstdint>
#include <qqmlregistration.h>

namespace zuvo {

/// The page "The Lantern": what the analysis is to look for. The choices are the flow's; nothing is refused.
class StylePageModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(zuvo::MineViewModel* flow READ flow WRITE setFlow NOTIFY flowChanged)
    Q_PROPERTY(QString directorNotes READ directorNotes WRITE setDirectorNotes NOTIFY directorNotesChanged)
    Q_PROPERTY(bool hasNotes READ hasNotes NOTIFY directorNotesChanged)
    Q_PROPERTY(bool isMagicMode READ isMagicMode NOTIFY magicModeChanged)
    Q_PROPERTY(QString mainText READ mainText NOTIFY magicModeChanged)
    Q_PROPERTY(QVariantList presets READ presets CONSTANT)
    Q_PROPERTY(QString selectedPresetId READ selectedPresetId NOTIFY selectedPresetIdChanged)
    Q_PROPERTY(QString referenceURL READ referenceURL WRITE setReferenceURL NOTIFY referenceURLChanged)
    Q_PROPERTY(bool showSliders READ showSliders NOTIFY showSlidersChanged)
    Q_PROPERTY(QVariantList sliderDefinitions READ sliderDefinitions CONSTANT)
    Q_PROPERTY(QVariantList sliderValues READ sliderValues NOTIFY slidersChanged)
    Q_PROPERTY(QStringList sliderTexts READ sliderTexts NOTIFY slidersChanged)
    Q_PROPERTY(QString estimatedOutput READ estimatedOutput NOTIFY estimatedOutputChanged)
public:
    explicit StylePageModel(QObject* parent = nullptr);

    [[nodiscard]] MineViewModel* flow() const { return m_flow; }
    void setFlow(MineViewModel* flow);

    [[nodiscard]] QString directorNotes() const;
    void setDirectorNotes(const QString& notes);
    [[nodiscard]] bool hasNotes() const { return !directorNotes().isEmpty(); }

    [[nodiscard]] bool isMagicMode() const;
    Q_INVOKABLE void toggleMagicMode();
    [[nodiscard]] QString mainText() const; ///< of the main button

    /// A map with `id`, `name`, `description` and `symbol` for each preset.
    [[nodiscard]] static QVariantList presets();
    [[nodiscard]] QString selectedPresetId() const; ///< empty for none
    /// Chooses the preset with its sliders; the one that is chosen is let go, and the sliders stay.
    Q_INVOKABLE void pressPreset(const QString& presetId);

    [[nodiscard]] QString referenceURL() const;
    void setReferenceURL(const QString& url);

    [[nodiscard]] bool showSliders() const { return m_showSliders; }
    Q_INVOKABLE void toggleSliders();
    /// A map with `label`, `low` and `high` for each slider.
    [[nodiscard]] static QVariantList sliderDefinitions();
    [[nodiscard]] QVariantList sliderValues() const; ///< 0 to 1, in the order of the definitions
    [[nodiscard]] QStringList sliderTexts() const;   ///< the same as "15%"
    /// Moves a slider, by its place; the preset stays chosen.
    Q_INVOKABLE void moveSlider(int place, double value);

    /// How many segments a story of that length may have: the slower the pace (0 to 1), the longer each is, from 10 to
    /// 60 s. At least 1.
    [[nodiscard]] static std::int64_t estimatedSegments(double targetMinutes, double pace);
    [[nodiscard]] QString estimatedOutput() const; ///< "~5 min · ~8 segments"

    Q_INVOKABLE void goBack();
    Q_INVOKABLE void startMining();

Q_SIGNALS:
    void flowChanged();
    void directorNotesChanged();
    void magicModeChanged();
    void selectedPresetIdChanged();
    void referenceURLChanged();
    void showSlidersChanged();
    void slidersChanged();
    void estimatedOutputChanged();

private:
    QPointer<MineViewModel> m_flow;
    bool m_showSliders = false;
};

} // namespace zuvo
