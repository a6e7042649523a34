#pragma once

#include <QAbstractListModel>
#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QVariantList>
#include <qqmlregistration.h>
#include <vector>

namespace zuvo {

/// One row of a list: what it is known by, and a value for each role.
struct ListRow {
    QString key;
    QVariantList values;
};

/// A list that is told anew as a whole, and tells its views only what differs: a row that stays keeps its place on
/// screen, with the keyboard on it. Neighbours that come or go together are told at once. Keys differ from row to row.
class RowListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("A page's model holds it")
    Q_PROPERTY(int count READ count NOTIFY countChanged)
public:
    explicit RowListModel(const QList<QByteArray>& roles, QObject* parent = nullptr);

    /// Rows whose key is in both lists stay, in case they stand in the same order; otherwise the list begins anew.
    void setRows(std::vector<ListRow> rows);

    [[nodiscard]] const std::vector<ListRow>& rows() const { return m_rows; }
    [[nodiscard]] int count() const { return static_cast<int>(m_rows.size()); }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override { return m_roleNames; }

Q_SIGNALS:
    void countChanged();

private:
    void removeMissing(const std::vector<ListRow>& rows);
    [[nodiscard]] bool standsInOrderIn(const std::vector<ListRow>& rows) const;
    void insertNew(const std::vector<ListRow>& rows);

    QHash<int, QByteArray> m_roleNames;
    std::vector<ListRow> m_rows;
};

} // namespace zuvo
