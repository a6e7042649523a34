#include "ui/SeenRowsModel.h"

namespace zuvo {

void SeenRowsModel::setFirstSeen(int row) {
    set(m_firstSeen, row, &SeenRowsModel::firstSeenChanged);
}

void SeenRowsModel::setLastSeen(int row) {
    set(m_lastSeen, row, &SeenRowsModel::lastSeenChanged);
}

void SeenRowsModel::setFocusedRow(int row) {
    set(m_focusedRow, row, &SeenRowsModel::focusedRowChanged);
}

void SeenRowsModel::set(int& member, int row, void (SeenRowsModel::*changed)()) {
    if (member == row)
        return;
    member = row;
    invalidateRowsFilter();
    Q_EMIT(this->*changed)();
}

void SeenRowsModel::setSourceModel(QAbstractItemModel* model) {
    if (sourceModel() != nullptr)
        sourceModel()->disconnect(this);
    // The base connects first, so that it knows of a change before it is followed here.
    QSortFilterProxyModel::setSourceModel(model);
    if (model == nullptr)
        return;
    connect(model, &QAbstractItemModel::rowsInserted, this, &SeenRowsModel::followRows);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &SeenRowsModel::followRows);
}

void SeenRowsModel::followRows() {
    // A row whose number has changed may be seen no longer, or seen only now.
    invalidateRowsFilter();
    if (rowCount() > 0)
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, 0), {placeRole});
}

QVariant SeenRowsModel::data(const QModelIndex& index, int role) const {
    return role == placeRole ? mapToSource(index).row() : QSortFilterProxyModel::data(index, role);
}

QHash<int, QByteArray> SeenRowsModel::roleNames() const {
    auto names = QSortFilterProxyModel::roleNames();
    names.insert(placeRole, "place");
    return names;
}

bool SeenRowsModel::filterAcceptsRow(int row, const QModelIndex& parent) const {
    const bool isAtAnEnd = row == 0 || row == sourceModel()->rowCount(parent) - 1;
    const bool isSeen = row >= m_firstSeen && row <= m_lastSeen;
    const bool isByTheKeyboard = row >= m_focusedRow - 1 && row <= m_focusedRow + 1;
    return isAtAnEnd || isSeen || isByTheKeyboard;
}

} // namespace zuvo
