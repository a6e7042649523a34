#pragma once

#include "model/MiningResults.h"

#include <QAbstractListModel>
#include <QString>
#include <cstdint>
#include <optional>
#include <qqmlregistration.h>
#include <vector>

namespace zuvo {

/// The moments of the story as cards, in the user's order.
class SegmentCards : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Each belongs to a review page")
public:
    enum Role {
        SegmentId = Qt::UserRole + 1,
        Position, ///< from 1
        Times,    ///< "2:05 → 2:31"
        Length,   ///< "25s"
        Chapter,  ///< empty without one
        Gem,      ///< place in Theme.chapterGems, -1 without a chapter
        Transcript,
        Translation, ///< may be empty
        IsExpanded,
        IsPlaying,
    };

    using QAbstractListModel::QAbstractListModel;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] const std::vector<StorySegment>& segments() const { return m_segments; }
    [[nodiscard]] std::optional<std::size_t> rowOf(std::int64_t id) const; ///< the first of that id

    void setSegments(std::vector<StorySegment> segments);
    void remove(std::size_t row);
    /// Takes the card out of `from` and puts it in at `to`; both are rows.
    void move(std::size_t from, std::size_t to);
    void setExpanded(std::optional<std::int64_t> id);
    void setPlaying(std::optional<std::int64_t> id);

private:
    void changed(std::optional<std::int64_t> id, int role);
    /// Positions and colours follow the order.
    void renumber();

    std::vector<StorySegment> m_segments;
    std::vector<std::optional<int>> m_gems;
    std::optional<std::int64_t> m_expanded;
    std::optional<std::int64_t> m_playing;
};

} // namespace zuvo
