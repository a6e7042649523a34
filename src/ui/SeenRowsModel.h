#pragma once

#include <QByteArray>
#include <QHash>
#include <QSortFilterProxyModel>
#include <qqmlregistration.h>

namespace zuvo {

/// Of a long list the rows that are worth an item each, in the list's order:
///
///     row   0 1 2 3 4 5 6 7 8 9 10 11        seen 4 to 6, the keyboard on 9
///     made  x       x x x   x x x   x
///
/// Those that are seen; the first and the last, which Tab reaches from outside; and those around the one that has the
/// keyboard, to which Tab leads from there.
class SeenRowsModel : public QSortFilterProxyModel {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(int firstSeen READ firstSeen WRITE setFirstSeen NOTIFY firstSeenChanged)
    Q_PROPERTY(int lastSeen READ lastSeen WRITE setLastSeen NOTIFY lastSeenChanged)
    Q_PROPERTY(int focusedRow READ focusedRow WRITE setFocusedRow NOTIFY focusedRowChanged)
public:
    /// The number of a row in the whole list; the role "place". The other roles are the list's own.
    static constexpr int placeRole = 0x7fff;

    explicit SeenRowsModel(QObject* parent = nullptr) : QSortFilterProxyModel(parent) {}

    [[nodiscard]] int firstSeen() const { return m_firstSeen; }
    [[nodiscard]] int lastSeen() const { return m_lastSeen; } ///< included; before firstSeen if none is seen
    [[nodiscard]] int focusedRow() const { return m_focusedRow; }
    /// Any number will do, also those of no row.
    void setFirstSeen(int row);
    void setLastSeen(int row);
    void setFocusedRow(int row);

    void setSourceModel(QAbstractItemModel* model) override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void firstSeenChanged();
    void lastSeenChanged();
    void focusedRowChanged();

protected:
    [[nodiscard]] bool filterAcceptsRow(int row, const QModelIndex& parent) const override;

private:
    void set(int& member, int row, void (SeenRowsModel::*changed)());
    void followRows();

    int m_firstSeen = 0;
    int m_lastSeen = -1;
    int m_focusedRow = -2; ///< beside no row
};

} // namespace zuvo
