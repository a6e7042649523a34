#pragma once

#include "model/Transcript.h"

#include <QAbstractListModel>
#include <QColor>
#include <QLocale>
#include <QString>
#include <QTimer>
#include <cstddef>
#include <qqmlregistration.h>
#include <vector>

namespace zuvo {

/// A piece of a line, found by the search or not.
struct TextRun {
    QString text;
    bool isMatch = false;
};

/// Text made ready for a search that ignores case by the rules of the locale's language, and the ways in which
/// Unicode can write one character. Accents count.
[[nodiscard]] QString foldedForSearch(const QString& text, const QLocale& locale);

/// The text cut where occurrences of the search begin and end, from the left and without overlaps. The runs joined
/// are the text.
[[nodiscard]] std::vector<TextRun> highlightedText(const QString& text, const QString& search, const QLocale& locale);

/// The lines of the whole transcript that hold the search.
class EchoLines : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Each belongs to a review page")
    Q_PROPERTY(QColor matchColor READ matchColor WRITE setMatchColor NOTIFY matchColorChanged)
public:
    enum Role {
        Time = Qt::UserRole + 1, ///< "10:12"
        Text,
        Markup, ///< styled text with the matches in `matchColor`
    };

    explicit EchoLines(QObject* parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    void setTranscript(std::vector<TranscriptSegment> lines);
    void setSearch(const QString& search);
    void setLocale(const QLocale& locale); ///< the user's by default; before `setSearch`

    /// All lines are ready for a search. They are made ready in idle time, the rest of them at the first search.
    [[nodiscard]] bool isReady() const { return m_folded.size() == m_lines.size(); }

    [[nodiscard]] const TranscriptSegment* line(int row) const; ///< nullptr if there is no such row

    [[nodiscard]] QColor matchColor() const { return m_matchColor; }
    void setMatchColor(const QColor& color);

Q_SIGNALS:
    void matchColorChanged();

private:
    [[nodiscard]] QString markup(const QString& text) const;
    /// Makes up to so many more lines ready: typing then looks through text that is.
    void prepare(std::size_t count);

    std::vector<TranscriptSegment> m_lines;
    std::vector<QString> m_folded;    ///< of the lines that are ready, from the first on
    std::vector<std::size_t> m_shown; ///< places in `m_lines`
    QString m_search;
    QString m_foldedSearch;
    QLocale m_locale;
    QTimer m_idle;
    QColor m_matchColor = Qt::red;
};

} // namespace zuvo
