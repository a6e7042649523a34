#include "ui/SegmentCards.h"

#include "ui/ReviewTexts.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace zuvo {

int SegmentCards::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_segments.size());
}

QVariant SegmentCards::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const auto row = static_cast<std::size_t>(index.row());
    const auto& segment = m_segments[row];
    switch (role) {
    case SegmentId:
        return QVariant::fromValue<qint64>(segment.id());
    case Position:
        return index.row() + 1;
    case Times:
        return QString(review::formatTime(segment.startTime) + QStringLiteral(" \u2192 ") +
                       review::formatTime(segment.endTime));
    case Length:
        return review::formatDuration(segment.endTime - segment.startTime);
    case Chapter:
        return QString::fromStdString(segment.chapter.value_or(std::string()));
    case Gem:
        return m_gems[row].value_or(-1);
    case Transcript:
    case Qt::DisplayRole:
        return QString::fromStdString(segment.transcript);
    case Translation:
        return QString::fromStdString(segment.translation);
    case IsExpanded:
        return m_expanded == segment.id();
    case IsPlaying:
        return m_playing == segment.id();
    default:
        return {};
    }
}

QHash<int, QByteArray> SegmentCards::roleNames() const {
    return {{SegmentId, "segmentId"},   {Position, "position"},       {Times, "times"},
            {Length, "length"},         {Chapter, "chapter"},         {Gem, "gem"},
            {Transcript, "transcript"}, {Translation, "translation"}, {IsExpanded, "isExpanded"},
            {IsPlaying, "isPlaying"}};
}

std::optional<std::size_t> SegmentCards::rowOf(std::int64_t id) const {
    const auto found = std::find_if(m_segments.begin(), m_segments.end(),
                                    [id](const StorySegment& segment) { return segment.id() == id; });
    if (found == m_segments.end())
        return std::nullopt;
    return static_cast<std::size_t>(std::distance(m_segments.begin(), found));
}

void SegmentCards::setSegments(std::vector<StorySegment> segments) {
    beginResetModel();
    m_segments = std::move(segments);
    m_gems = chapterGems(m_segments);
    endResetModel();
}

void SegmentCards::remove(std::size_t row) {
    beginRemoveRows({}, static_cast<int>(row), static_cast<int>(row));
    m_segments.erase(m_segments.begin() + static_cast<std::ptrdiff_t>(row));
    m_gems.erase(m_gems.begin() + static_cast<std::ptrdiff_t>(row));
    endRemoveRows();
    renumber();
}

void SegmentCards::move(std::size_t from, std::size_t to) {
    if (from == to)
        return;
    // Qt counts the place to move to before the row is taken out.
    beginMoveRows({}, static_cast<int>(from), static_cast<int>(from), {}, static_cast<int>(to > from ? to + 1 : to));
    const auto begin = m_segments.begin();
    const auto gems = m_gems.begin();
    const auto first = static_cast<std::ptrdiff_t>(std::min(from, to));
    const auto last = static_cast<std::ptrdiff_t>(std::max(from, to));
    const auto middle = from < to ? first + 1 : last;
    std::rotate(begin + first, begin + middle, begin + last + 1);
    std::rotate(gems + first, gems + middle, gems + last + 1);
    endMoveRows();
    renumber();
}

void SegmentCards::setExpanded(std::optional<std::int64_t> id) {
    const auto before = std::exchange(m_expanded, id);
    changed(before, IsExpanded);
    changed(id, IsExpanded);
}

void SegmentCards::setPlaying(std::optional<std::int64_t> id) {
    const auto before = std::exchange(m_playing, id);
    changed(before, IsPlaying);
    changed(id, IsPlaying);
}

void SegmentCards::changed(std::optional<std::int64_t> id, int role) {
    for (std::size_t row = 0; id && row < m_segments.size(); ++row) {
        if (m_segments[row].id() == *id) {
            const auto place = index(static_cast<int>(row));
            Q_EMIT dataChanged(place, place, {role});
        }
    }
}

void SegmentCards::renumber() {
    m_gems = chapterGems(m_segments);
    if (!m_segments.empty())
        Q_EMIT dataChanged(index(0), index(rowCount() - 1), {Position, Gem});
}

} // namespace zuvo
