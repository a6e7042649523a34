#include "ui/StoryMapModel.h"

#include "ui/ReviewTexts.h"

#include <QMarginsF>
#include <QRandomGenerator>
#include <algorithm>
#include <cmath>
#include <utility>

namespace zuvo {

namespace {

constexpr std::size_t cardColumns = 3;
constexpr double cardStepX = 110.0;
constexpr double cardStepY = 90.0;
constexpr QPointF firstCard{100.0, 30.0}; ///< from the cluster's centre
constexpr double jitterReach = 8.0;
constexpr double firstRow = 120.0;
constexpr double rowStep = 220.0;
/// A chapter of three columns stands in the middle of its share of the width.
constexpr double fullClusterWidth = 420.0;
/// Chapters side by side neither overlap nor begin left of the board: a narrow board is panned to the last ones.
constexpr double smallestShare = 440.0;
constexpr double clusterRise = 50.0; ///< of the shape's top above the centre
constexpr double panShare = 0.3;
constexpr double smallestScale = 0.4;
constexpr double largestScale = 2.0;
constexpr double wheelFactor = 1.1;
/// From a card's centre to the farthest that is drawn of it: half of its size, and the reach of its shadow.
constexpr QPointF drawnReach{46.0 + 20.0, 36.0 + 20.0};

double randomJitter() {
    return (QRandomGenerator::global()->generateDouble() * 2.0 - 1.0) * jitterReach;
}

std::size_t gridColumns(std::size_t chapterCount) {
    const auto columns = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(chapterCount))));
    return std::max<std::size_t>(1, columns);
}

} // namespace

std::vector<MapChapter> mapChapters(const std::vector<StorySegment>& segments) {
    const auto gems = chapterGems(segments);
    std::vector<MapChapter> chapters;
    for (std::size_t i = 0; i < segments.size(); ++i) {
        const auto name = gems[i] ? *segments[i].chapter : std::string("Uncategorized");
        auto found = std::find_if(chapters.begin(), chapters.end(),
                                  [&name](const MapChapter& chapter) { return chapter.name == name; });
        if (found == chapters.end())
            found = chapters.insert(chapters.end(), MapChapter{name, -1, {}});
        if (gems[i])
            found->gem = *gems[i];
        found->ids.push_back(segments[i].id());
    }
    return chapters;
}

QPointF clusterCenter(std::size_t chapterIndex, std::size_t chapterCount, QSizeF totalSize) {
    const auto columns = gridColumns(chapterCount);
    const auto share = std::max(totalSize.width() / static_cast<double>(columns), smallestShare);
    const auto column = static_cast<double>(chapterIndex % columns);
    const auto row = static_cast<double>(chapterIndex / columns);
    return {column * share + (share - fullClusterWidth) / 2.0, firstRow + row * rowStep};
}

QSizeF clusterSize(std::size_t cardCount) {
    const auto columns = static_cast<double>(std::min(cardCount, cardColumns));
    const auto rows = static_cast<double>((cardCount + cardColumns - 1) / cardColumns);
    return {columns * 120.0 + 60.0, rows * 100.0 + 60.0};
}

StoryMapModel::StoryMapModel(SegmentCards* cards, QObject* parent)
    : QIdentityProxyModel(parent), m_cards(cards), m_jitter(randomJitter) {
    setSourceModel(cards);
    connect(this, &QAbstractItemModel::rowsRemoved, this, &StoryMapModel::clustersChanged);
    connect(this, &QAbstractItemModel::rowsMoved, this, &StoryMapModel::clustersChanged);
    connect(this, &QAbstractItemModel::modelReset, this, &StoryMapModel::clustersChanged);
    connect(this, &QAbstractItemModel::modelReset, this, &StoryMapModel::followSight);
    connect(this, &StoryMapModel::artboardChanged, this, &StoryMapModel::seenChanged);
    connect(this, &StoryMapModel::seenChanged, this, &StoryMapModel::followSight);
}

QVariant StoryMapModel::data(const QModelIndex& index, int role) const {
    if (role != CenterX && role != CenterY && role != IsInSight)
        return QIdentityProxyModel::data(index, role);
    const auto id = QIdentityProxyModel::data(index, SegmentCards::SegmentId);
    if (!id.isValid())
        return {};
    if (role == IsInSight)
        return m_inSight.count(id.toLongLong()) != 0;
    const auto center = positionOf(id.toLongLong());
    return role == CenterX ? center.x() : center.y();
}

QHash<int, QByteArray> StoryMapModel::roleNames() const {
    auto names = m_cards->roleNames();
    names[CenterX] = "centerX";
    names[CenterY] = "centerY";
    names[IsInSight] = "isInSight";
    return names;
}

void StoryMapModel::setViewSize(double width, double height) {
    m_viewSize = {width, height};
    Q_EMIT seenChanged();
}

void StoryMapModel::initializePositions(double width, double height) {
    if (!m_cardPositions.empty())
        return;
    m_size = {width, height};
    Q_EMIT clustersChanged();
    const auto chapters = mapChapters(m_cards->segments());
    for (std::size_t c = 0; c < chapters.size(); ++c) {
        const auto center = clusterCenter(c, chapters.size(), m_size);
        const auto& ids = chapters[c].ids;
        for (std::size_t i = 0; i < ids.size(); ++i) {
            const auto x = center.x() + firstCard.x() + static_cast<double>(i % cardColumns) * cardStepX + m_jitter();
            const auto y = center.y() + firstCard.y() + static_cast<double>(i / cardColumns) * cardStepY + m_jitter();
            m_cardPositions[ids[i]] = {x, y};
        }
    }
    positionsChanged();
}

void StoryMapModel::clear() {
    m_cardPositions.clear();
    m_artboardOffset = {};
    m_artboardScale = 1.0;
    positionsChanged();
    Q_EMIT artboardChanged();
}

void StoryMapModel::moveCard(qint64 id, double x, double y) {
    const auto row = m_cards->rowOf(id);
    if (!row || !std::isfinite(x) || !std::isfinite(y))
        return;
    m_cardPositions[id] = {x, y};
    const auto place = index(static_cast<int>(*row), 0);
    Q_EMIT dataChanged(place, place, {CenterX, CenterY});
    followSight();
}

void StoryMapModel::pan(double translationX, double translationY) {
    m_artboardOffset += QPointF(translationX, translationY) * panShare;
    Q_EMIT artboardChanged();
}

void StoryMapModel::zoom(double value) {
    if (!std::isfinite(value))
        return;
    m_artboardScale = std::clamp(value, smallestScale, largestScale);
    Q_EMIT artboardChanged();
}

void StoryMapModel::zoomBy(double notches) {
    zoom(m_artboardScale * std::pow(wheelFactor, notches));
}

QPointF StoryMapModel::positionOf(std::int64_t id) const {
    const auto found = m_cardPositions.find(id);
    return found == m_cardPositions.end() ? QPointF() : found->second;
}

QRectF StoryMapModel::seen() const {
    const auto size = m_viewSize / m_artboardScale;
    const auto middle = QPointF(m_viewSize.width(), m_viewSize.height()) / 2.0;
    return {middle - (middle + m_artboardOffset) / m_artboardScale, size};
}

bool StoryMapModel::isInSight(std::int64_t id) const {
    const auto reach = QMarginsF(drawnReach.x(), drawnReach.y(), drawnReach.x(), drawnReach.y());
    return seen().marginsAdded(reach).contains(positionOf(id));
}

void StoryMapModel::followSight() {
    const auto& segments = m_cards->segments();
    const auto before = std::move(m_inSight);
    m_inSight.clear();
    for (const auto& segment : segments) {
        if (isInSight(segment.id()))
            m_inSight.insert(segment.id());
    }
    for (std::size_t row = 0; row < segments.size(); ++row) {
        const auto id = segments[row].id();
        if (m_inSight.count(id) == before.count(id))
            continue;
        const auto place = index(static_cast<int>(row), 0);
        Q_EMIT dataChanged(place, place, {IsInSight});
    }
}

QVariantList StoryMapModel::clusters() const {
    const auto chapters = mapChapters(m_cards->segments());
    QVariantList list;
    for (std::size_t c = 0; c < chapters.size(); ++c) {
        const auto center = clusterCenter(c, chapters.size(), m_size);
        const auto size = clusterSize(chapters[c].ids.size());
        list.append(QVariantMap{{QStringLiteral("name"), QString::fromStdString(chapters[c].name)},
                                {QStringLiteral("gem"), chapters[c].gem},
                                {QStringLiteral("x"), center.x()},
                                {QStringLiteral("y"), center.y() - clusterRise},
                                {QStringLiteral("width"), size.width()},
                                {QStringLiteral("height"), size.height()}});
    }
    return list;
}

void StoryMapModel::positionsChanged() {
    if (rowCount() > 0)
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, 0), {CenterX, CenterY});
    followSight();
}

} // namespace zuvo
