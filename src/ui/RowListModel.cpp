#include "ui/RowListModel.h"

#include <QSet>
#include <utility>

namespace zuvo {

RowListModel::RowListModel(const QList<QByteArray>& roles, QObject* parent) : QAbstractListModel(parent) {
    int role = Qt::UserRole;
    for (const auto& name : roles)
        m_roleNames.insert(role++, name);
}

int RowListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant RowListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid) || !m_roleNames.contains(role))
        return {};
    return m_rows.at(static_cast<std::size_t>(index.row())).values.value(role - Qt::UserRole);
}

void RowListModel::setRows(std::vector<ListRow> rows) {
    const int before = count();
    removeMissing(rows);
    if (!standsInOrderIn(rows)) {
        beginResetModel();
        m_rows = std::move(rows);
        endResetModel();
    } else {
        insertNew(rows);
        for (int row = 0; row < count(); ++row) {
            auto& kept = m_rows.at(static_cast<std::size_t>(row));
            auto& wanted = rows.at(static_cast<std::size_t>(row));
            if (kept.values == wanted.values)
                continue;
            kept.values = std::move(wanted.values);
            Q_EMIT dataChanged(index(row), index(row));
        }
    }
    if (count() != before)
        Q_EMIT countChanged();
}

void RowListModel::removeMissing(const std::vector<ListRow>& rows) {
    QSet<QString> wanted;
    for (const auto& row : rows)
        wanted.insert(row.key);
    for (int row = count() - 1; row >= 0; --row) {
        if (wanted.contains(m_rows.at(static_cast<std::size_t>(row)).key))
            continue;
        beginRemoveRows({}, row, row);
        m_rows.erase(m_rows.begin() + row);
        endRemoveRows();
    }
}

bool RowListModel::standsInOrderIn(const std::vector<ListRow>& rows) const {
    std::size_t found = 0;
    for (const auto& row : rows) {
        if (found < m_rows.size() && m_rows.at(found).key == row.key)
            ++found;
    }
    return found == m_rows.size();
}

void RowListModel::insertNew(const std::vector<ListRow>& rows) {
    for (std::size_t place = 0; place < rows.size(); ++place) {
        if (place < m_rows.size() && m_rows.at(place).key == rows.at(place).key)
            continue;
        const int row = static_cast<int>(place);
        beginInsertRows({}, row, row);
        m_rows.insert(m_rows.begin() + row, rows.at(place));
        endInsertRows();
    }
}

} // namespace zuvo
