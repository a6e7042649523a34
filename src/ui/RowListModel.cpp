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
    const auto isWanted = [this, &wanted](int row) {
        return wanted.contains(m_rows.at(static_cast<std::size_t>(row)).key);
    };
    for (int last = count() - 1; last >= 0; --last) {
        if (isWanted(last))
            continue;
        int first = last;
        while (first > 0 && !isWanted(first - 1))
            --first;
        beginRemoveRows({}, first, last);
        m_rows.erase(m_rows.begin() + first, m_rows.begin() + last + 1);
        endRemoveRows();
        last = first;
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
    const auto isThere = [this](std::size_t place, const ListRow& row) {
        return place < m_rows.size() && m_rows.at(place).key == row.key;
    };
    for (std::size_t place = 0; place < rows.size(); ++place) {
        if (isThere(place, rows.at(place)))
            continue;
        auto end = place + 1;
        while (end < rows.size() && !isThere(place, rows.at(end)))
            ++end;
        const int first = static_cast<int>(place);
        const int last = static_cast<int>(end) - 1;
        beginInsertRows({}, first, last);
        m_rows.insert(m_rows.begin() + first, rows.begin() + first, rows.begin() + last + 1);
        endInsertRows();
        place = end - 1;
    }
}

} // namespace zuvo
