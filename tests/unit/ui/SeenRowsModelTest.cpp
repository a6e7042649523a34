#include "ui/SeenRowsModel.h"

#include "ui/RowListModel.h"

#include <QAbstractItemModelTester>
#include <gmock/gmock.h>
#include <string>

using namespace zuvo;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class SeenRows : public testing::Test {
protected:
    SeenRows() { seen.setSourceModel(&list); }

    /// Rows of the numbers from `first` to `last`.
    void tell(int first, int last) {
        std::vector<ListRow> rows;
        for (int number = first; number <= last; ++number)
            rows.push_back({QString::number(number), {number}});
        list.setRows(std::move(rows));
    }

    void see(int first, int last) {
        seen.setFirstSeen(first);
        seen.setLastSeen(last);
    }

    [[nodiscard]] std::vector<int> made(int role = SeenRowsModel::placeRole) const {
        std::vector<int> values;
        for (int row = 0; row < seen.rowCount(); ++row)
            values.push_back(seen.data(seen.index(row, 0), role).toInt());
        return values;
    }

    RowListModel list{{"number"}};
    SeenRowsModel seen;
    QAbstractItemModelTester tester{&seen, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

} // namespace

TEST_F(SeenRows, areMadeWithTheFirstTheLastAndThoseAroundTheKeyboard) {
    tell(0, 11);
    see(4, 6);
    seen.setFocusedRow(9);
    EXPECT_THAT(made(), ElementsAre(0, 4, 5, 6, 8, 9, 10, 11));
}

TEST_F(SeenRows, ofAShortListAllAreMade) {
    tell(0, 2);
    see(-3, 20);
    EXPECT_THAT(made(), ElementsAre(0, 1, 2));
    tell(0, 0);
    EXPECT_THAT(made(), ElementsAre(0));
    tell(0, -1);
    EXPECT_THAT(made(), IsEmpty());
}

TEST_F(SeenRows, theKeyboardAtAnEndHasOneNeighbour) {
    tell(0, 9);
    see(3, 3);
    seen.setFocusedRow(0);
    EXPECT_THAT(made(), ElementsAre(0, 1, 3, 9));
    seen.setFocusedRow(9);
    EXPECT_THAT(made(), ElementsAre(0, 3, 8, 9));
}

TEST_F(SeenRows, whatComesBehindTheLastRowLetsItGo) {
    tell(0, 5);
    see(1, 2);
    EXPECT_THAT(made(), ElementsAre(0, 1, 2, 5));
    tell(0, 9);
    EXPECT_THAT(made(), ElementsAre(0, 1, 2, 9));
}

TEST_F(SeenRows, aRowThatGoesLetsTheOnesBehindItMoveUp) {
    tell(0, 9);
    see(1, 2);
    tell(1, 9); // "0" has gone
    EXPECT_THAT(made(Qt::UserRole), ElementsAre(1, 2, 3, 9));
    EXPECT_THAT(made(), ElementsAre(0, 1, 2, 8));
}

TEST_F(SeenRows, aNewNumberIsToldToTheViews) {
    tell(0, 9);
    see(1, 2);
    bool isTold = false;
    QObject::connect(&seen, &QAbstractItemModel::dataChanged, &seen,
                     [&isTold](const QModelIndex&, const QModelIndex&, const QList<int>& roles) {
                         isTold = isTold || roles.contains(SeenRowsModel::placeRole);
                     });
    tell(1, 9);
    EXPECT_TRUE(isTold);
}

TEST_F(SeenRows, scrollingKeepsWhatStaysInSight) {
    tell(0, 99);
    see(10, 20);
    std::vector<std::string> told;
    QObject::connect(&seen, &QAbstractItemModel::rowsInserted, &seen, [&told](const QModelIndex&, int first, int last) {
        told.push_back("insert " + std::to_string(first) + "-" + std::to_string(last));
    });
    QObject::connect(&seen, &QAbstractItemModel::rowsRemoved, &seen, [&told](const QModelIndex&, int first, int last) {
        told.push_back("remove " + std::to_string(first) + "-" + std::to_string(last));
    });
    seen.setLastSeen(22);
    seen.setFirstSeen(12);
    EXPECT_THAT(told, ElementsAre("insert 12-13", "remove 1-2"));
}
