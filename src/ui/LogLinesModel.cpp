#include "ui/LogLinesModel.h"

#include "base/Text.h"

#include <QStringList>
#include <algorithm>
#include <array>
#include <utility>

namespace zuvo {

namespace {

/// As it is shown and copied: what a service has answered may be in it.
QString shownText(const PipelineLog& line) {
    return QString::fromStdString(withoutControlCharacters(line.text));
}

} // namespace

void LogLinesModel::setPipeline(std::shared_ptr<LocalPipeline> pipeline) {
    if (m_pipeline != nullptr)
        m_pipeline->disconnect(this);
    m_pipeline = std::move(pipeline);
    if (m_pipeline != nullptr) {
        connect(m_pipeline.get(), &LocalPipeline::logAdded, this, &LogLinesModel::takeNewLines);
        connect(m_pipeline.get(), &LocalPipeline::logsCleared, this, &LogLinesModel::beginAnew);
    }
    beginAnew();
}

void LogLinesModel::takeNewLines() {
    const auto count = static_cast<int>(m_pipeline->logs().size());
    if (count <= m_count)
        return;
    beginInsertRows({}, m_count, count - 1);
    m_count = count;
    endInsertRows();
    Q_EMIT countChanged();
}

void LogLinesModel::beginAnew() {
    beginResetModel();
    m_count = m_pipeline == nullptr ? 0 : static_cast<int>(m_pipeline->logs().size());
    endResetModel();
    Q_EMIT countChanged();
}

int LogLinesModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_count;
}

QVariant LogLinesModel::data(const QModelIndex& index, int role) const {
    const auto row = static_cast<std::size_t>(index.row());
    if (!checkIndex(index, CheckIndexOption::IndexIsValid) || row >= m_pipeline->logs().size())
        return {};
    const auto& line = m_pipeline->logs().at(row);
    switch (role) {
    case timestampRole:
        return QString::fromStdString(line.timestamp);
    case lineRole:
        return shownText(line);
    case colorNameRole:
        return logColor(line.color);
    default:
        return {};
    }
}

QHash<int, QByteArray> LogLinesModel::roleNames() const {
    return {{timestampRole, "timestamp"}, {lineRole, "line"}, {colorNameRole, "colorName"}};
}

QString LogLinesModel::plainText(int first, int last) const {
    if (m_pipeline == nullptr)
        return {};
    QStringList lines;
    const int end = std::min(std::max(first, last), m_count - 1);
    for (int row = std::max(std::min(first, last), 0); row <= end; ++row) {
        const auto& line = m_pipeline->logs().at(static_cast<std::size_t>(row));
        // Of a line that holds line ends, only the first part may pass for a line of the log.
        auto text = shownText(line);
        text.replace(QLatin1Char('\n'), QStringLiteral("\n      "));
        lines.append(QString::fromStdString(line.timestamp) + QLatin1Char(' ') + text);
    }
    return lines.join(QLatin1Char('\n'));
}

QString LogLinesModel::logColor(std::string_view name) {
    constexpr std::array known = {"accent", "green", "blue", "dim"};
    const auto* const found = std::find(known.begin(), known.end(), name);
    return QString::fromUtf8(found == known.end() ? "muted" : *found);
}

} // namespace zuvo
