#include "ui/StylePageModel.h"

#include "base/Numbers.h"

#include <QVariantMap>
#include <algorithm>
#include <string>
#include <string_view>

namespace zuvo {

namespace {

QString displayText(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

} // namespace

StylePageModel::StylePageModel(QObject* parent) : QObject(parent) {
    connect(this, &StylePageModel::slidersChanged, this, &StylePageModel::estimatedOutputChanged);
}

void StylePageModel::setFlow(MineViewModel* flow) {
    if (m_flow == flow)
        return;
    if (!m_flow.isNull())
        m_flow->disconnect(this);
    m_flow = flow;
    if (flow != nullptr) {
        connect(flow, &MineViewModel::directorNotesChanged, this, &StylePageModel::directorNotesChanged);
        connect(flow, &MineViewModel::magicModeChanged, this, &StylePageModel::magicModeChanged);
        connect(flow, &MineViewModel::selectedPresetIdChanged, this, &StylePageModel::selectedPresetIdChanged);
        connect(flow, &MineViewModel::referenceURLChanged, this, &StylePageModel::referenceURLChanged);
        connect(flow, &MineViewModel::styleSlidersChanged, this, &StylePageModel::slidersChanged);
        connect(flow, &MineViewModel::targetMinutesChanged, this, &StylePageModel::estimatedOutputChanged);
    }
    Q_EMIT flowChanged();
    Q_EMIT directorNotesChanged();
    Q_EMIT magicModeChanged();
    Q_EMIT selectedPresetIdChanged();
    Q_EMIT referenceURLChanged();
    Q_EMIT slidersChanged();
}

QString StylePageModel::directorNotes() const {
    return m_flow.isNull() ? QString() : displayText(m_flow->directorNotes());
}

void StylePageModel::setDirectorNotes(const QString& notes) {
    if (!m_flow.isNull())
        m_flow->setDirectorNotes(notes.toStdString());
}

bool StylePageModel::isMagicMode() const {
    return !m_flow.isNull() && m_flow->isMagicMode();
}

void StylePageModel::toggleMagicMode() {
    if (!m_flow.isNull())
        m_flow->setMagicMode(!m_flow->isMagicMode());
}

QString StylePageModel::mainText() const {
    return isMagicMode() ? QStringLiteral("Release the Canary") : QStringLiteral("Start Mining");
}

QVariantList StylePageModel::presets() {
    QVariantList list;
    for (const auto& preset : STYLE_PRESETS) {
        list.append(QVariantMap{{QStringLiteral("id"), displayText(preset.id)},
                                {QStringLiteral("name"), displayText(preset.name)},
                                {QStringLiteral("description"), displayText(preset.description)},
                                {QStringLiteral("symbol"), displayText(preset.icon)}});
    }
    return list;
}

QString StylePageModel::selectedPresetId() const {
    return m_flow.isNull() ? QString() : displayText(m_flow->selectedPresetId().value_or(std::string()));
}

void StylePageModel::pressPreset(const QString& presetId) {
    const auto id = presetId.toStdString();
    const auto* const preset = findPreset(id);
    if (m_flow.isNull() || preset == nullptr)
        return;
    if (m_flow->selectedPresetId() == id) {
        m_flow->setSelectedPresetId(std::nullopt);
        return;
    }
    m_flow->setSelectedPresetId(id);
    m_flow->setStyleSliders(preset->sliders);
}

QString StylePageModel::referenceURL() const {
    return m_flow.isNull() ? QString() : displayText(m_flow->referenceURL());
}

void StylePageModel::setReferenceURL(const QString& url) {
    if (!m_flow.isNull())
        m_flow->setReferenceURL(url.toStdString());
}

void StylePageModel::toggleSliders() {
    m_showSliders = !m_showSliders;
    Q_EMIT showSlidersChanged();
}

QVariantList StylePageModel::sliderDefinitions() {
    QVariantList list;
    for (const auto& definition : SLIDER_DEFINITIONS) {
        list.append(QVariantMap{{QStringLiteral("label"), displayText(definition.label)},
                                {QStringLiteral("low"), displayText(definition.low)},
                                {QStringLiteral("high"), displayText(definition.high)}});
    }
    return list;
}

QVariantList StylePageModel::sliderValues() const {
    const auto sliders = m_flow.isNull() ? StyleSliders() : m_flow->styleSliders();
    QVariantList list;
    for (const auto& definition : SLIDER_DEFINITIONS)
        list.append(sliders.*definition.keyPath);
    return list;
}

QStringList StylePageModel::sliderTexts() const {
    constexpr double percent = 100.0;
    const auto sliders = m_flow.isNull() ? StyleSliders() : m_flow->styleSliders();
    QStringList list;
    for (const auto& definition : SLIDER_DEFINITIONS)
        list.append(displayText(fixedText(sliders.*definition.keyPath * percent, 0) + "%"));
    return list;
}

void StylePageModel::moveSlider(int place, double value) {
    if (m_flow.isNull() || place < 0 || static_cast<std::size_t>(place) >= SLIDER_DEFINITIONS.size())
        return;
    auto sliders = m_flow->styleSliders();
    sliders.*SLIDER_DEFINITIONS.at(static_cast<std::size_t>(place)).keyPath = value;
    m_flow->setStyleSliders(sliders);
}

std::int64_t StylePageModel::estimatedSegments(double targetMinutes, double pace) {
    const double secondsOfASegment = 10.0 + (1.0 - pace) * 50.0;
    return std::max<std::int64_t>(1, truncated(targetMinutes * 60.0 / secondsOfASegment));
}

QString StylePageModel::estimatedOutput() const {
    if (m_flow.isNull())
        return {};
    return QStringLiteral("~%1 min · ~%2 segments")
        .arg(truncated(m_flow->targetMinutes()))
        .arg(estimatedSegments(m_flow->targetMinutes(), m_flow->styleSliders().pace));
}

void StylePageModel::goBack() {
    if (!m_flow.isNull())
        m_flow->styleBack();
}

void StylePageModel::startMining() {
    if (!m_flow.isNull())
        m_flow->styleNext();
}

} // namespace zuvo
