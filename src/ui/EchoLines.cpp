#include "ui/EchoLines.h"

#include "ui/ReviewTexts.h"

#include <QStringMatcher>
#include <QTextBoundaryFinder>
#include <algorithm>
#include <numeric>
#include <utility>

namespace zuvo {

namespace {

/// Made ready in one turn of the event loop: about a millisecond's work.
constexpr std::size_t linesAtOnce = 500;

/// A folded text with the place that each of its code units has in the text.
struct TracedFolding {
    QString folded;
    std::vector<qsizetype> starts; ///< start of the character that the unit comes from
    std::vector<qsizetype> ends;   ///< end of that character
};

TracedFolding tracedFolding(const QString& text, const QLocale& locale) {
    TracedFolding traced;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype start = 0;
    for (auto end = finder.toNextBoundary(); end > start; end = finder.toNextBoundary()) {
        const auto folded = foldedForSearch(text.mid(start, end - start), locale);
        traced.folded += folded;
        const auto count = static_cast<std::size_t>(folded.size());
        traced.starts.insert(traced.starts.end(), count, start);
        traced.ends.insert(traced.ends.end(), count, end);
        start = end;
    }
    return traced;
}

std::vector<std::size_t> upTo(std::size_t count) {
    std::vector<std::size_t> all(count);
    std::iota(all.begin(), all.end(), std::size_t{0});
    return all;
}

} // namespace

QString foldedForSearch(const QString& text, const QLocale& locale) {
    // The language decides what is one letter's other case; folding then makes one of forms that are left, as of the
    // two small sigmas.
    return locale.toLower(text.normalized(QString::NormalizationForm_C)).toCaseFolded();
}

std::vector<TextRun> highlightedText(const QString& text, const QString& search, const QLocale& locale) {
    const auto wanted = foldedForSearch(search, locale);
    std::vector<TextRun> runs;
    qsizetype done = 0;
    const auto add = [&](qsizetype end, bool isMatch) {
        if (end > done)
            runs.push_back({text.mid(done, end - done), isMatch});
        done = std::max(done, end);
    };
    if (!wanted.isEmpty()) {
        const auto traced = tracedFolding(text, locale);
        for (auto at = traced.folded.indexOf(wanted); at >= 0; at = traced.folded.indexOf(wanted, at + wanted.size())) {
            add(traced.starts[static_cast<std::size_t>(at)], false);
            add(traced.ends[static_cast<std::size_t>(at + wanted.size() - 1)], true);
        }
    }
    add(text.size(), false);
    return runs;
}

EchoLines::EchoLines(QObject* parent) : QAbstractListModel(parent) {
    m_idle.setInterval(0);
    connect(&m_idle, &QTimer::timeout, this, [this] { prepare(linesAtOnce); });
}

int EchoLines::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_shown.size());
}

QVariant EchoLines::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const auto& shown = *line(index.row());
    switch (role) {
    case Time:
        return review::formatTime(shown.start);
    case Text:
    case Qt::DisplayRole:
        return QString::fromStdString(shown.text);
    case Markup:
        return markup(QString::fromStdString(shown.text));
    default:
        return {};
    }
}

QHash<int, QByteArray> EchoLines::roleNames() const {
    return {{Time, "time"}, {Text, "lineText"}, {Markup, "markup"}};
}

void EchoLines::setTranscript(std::vector<TranscriptSegment> lines) {
    beginResetModel();
    m_lines = std::move(lines);
    m_folded.clear();
    m_search.clear();
    m_foldedSearch.clear();
    m_shown = upTo(m_lines.size());
    endResetModel();
    m_idle.start();
}

void EchoLines::setSearch(const QString& search) {
    if (search == m_search)
        return;
    const auto folded = foldedForSearch(search, m_locale);
    // What holds the longer text holds the shorter one: typing on looks only through what is left.
    const bool narrows = !m_foldedSearch.isEmpty() && folded.contains(m_foldedSearch);
    auto candidates = narrows ? m_shown : upTo(m_lines.size());
    if (!folded.isEmpty()) {
        prepare(m_lines.size());
        const QStringMatcher matcher(folded);
        std::erase_if(candidates, [&](std::size_t line) { return matcher.indexIn(m_folded[line]) < 0; });
    }
    beginResetModel();
    m_search = search;
    m_foldedSearch = folded;
    m_shown = std::move(candidates);
    endResetModel();
}

void EchoLines::setLocale(const QLocale& locale) {
    m_locale = locale;
    m_folded.clear();
    m_idle.start();
}

const TranscriptSegment* EchoLines::line(int row) const {
    if (row < 0 || row >= rowCount())
        return nullptr;
    return &m_lines[m_shown[static_cast<std::size_t>(row)]];
}

void EchoLines::setMatchColor(const QColor& color) {
    if (color == m_matchColor)
        return;
    m_matchColor = color;
    Q_EMIT matchColorChanged();
    if (!m_shown.empty())
        Q_EMIT dataChanged(index(0), index(rowCount() - 1), {Markup});
}

QString EchoLines::markup(const QString& text) const {
    QString marked;
    for (const auto& run : highlightedText(text, m_search, m_locale)) {
        const auto escaped = run.text.toHtmlEscaped();
        marked +=
            run.isMatch ? QStringLiteral("<font color=\"%1\">%2</font>").arg(m_matchColor.name(), escaped) : escaped;
    }
    return marked;
}

void EchoLines::prepare(std::size_t count) {
    const auto end = std::min(m_lines.size(), m_folded.size() + std::min(count, m_lines.size()));
    m_folded.reserve(m_lines.size());
    while (m_folded.size() < end)
        m_folded.push_back(foldedForSearch(QString::fromStdString(m_lines[m_folded.size()].text), m_locale));
    if (isReady())
        m_idle.stop();
}

} // namespace zuvo
