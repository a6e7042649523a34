#include "ui/RowListModel.h"

#include <QAbstractItemModelTester>
#include <gmock/gmock.h>
#include <memory>
#include <string>

using namespace zuvo;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A list of one role whose keys and values are single letters; it notes what it tells its views.
class RowList : public testing::Test {
protected:
    RowList() {
        const auto note = [this](const std::string& what) { told.push_back(what); };
        QObject::connect(&list, &RowListModel::rowsInserted, &list, [note](const QModelIndex&, int first, int last) {
            note("insert " + std::to_string(first) + "-" + std::to_string(last));
        });
        QObject::connect(&list, &RowListModel::rowsRemoved, &list, [note](const QModelIndex&, int first, int last) {
            note("remove " + std::to_string(first) + "-" + std::to_string(last));
        });
        QObject::connect(&list, &RowListModel::dataChanged, &list,
                         [note](const QModelIndex& index) { note("change " + std::to_string(index.row())); });
        QObject::connect(&list, &RowListModel::modelReset, &list, [note] { note("reset"); });
    }

    void tell(const std::string& keys, const std::string& values) {
        std::vector<ListRow> rows;
        for (std::size_t i = 0; i < keys.size(); ++i)
            rows.push_back({QString(QLatin1Char(keys[i])), {QString(QLatin1Char(values[i]))}});
        told.clear();
        list.setRows(std::move(rows));
    }

    [[nodiscard]] std::string values() const {
        std::string all;
        for (int row = 0; row < list.rowCount(); ++row)
            all += list.data(list.index(row), Qt::UserRole).toString().toStdString();
        return all;
    }

    RowListModel list{{"letter"}};
    QAbstractItemModelTester tester{&list, QAbstractItemModelTester::FailureReportingMode::Fatal};
    std::vector<std::string> told;
};

} // namespace

TEST_F(RowList, aRowAtTheEndIsTheOnlyOneTold) {
    tell("ab", "xy");
    tell("abc", "xyz");
    EXPECT_THAT(told, ElementsAre("insert 2-2"));
    EXPECT_EQ(values(), "xyz");
}

TEST_F(RowList, aRemovedRowIsTheOnlyOneTold) {
    tell("abc", "xyz");
    tell("ac", "xz");
    EXPECT_THAT(told, ElementsAre("remove 1-1"));
    EXPECT_EQ(values(), "xz");
}

TEST_F(RowList, aRowInFrontAndALostLastOneKeepTheMiddle) {
    tell("abc", "xyz");
    tell("nab", "wxy");
    EXPECT_THAT(told, ElementsAre("remove 2-2", "insert 0-0"));
    EXPECT_EQ(values(), "wxy");
}

TEST_F(RowList, aChangedValueIsAChangeOfThatRow) {
    tell("ab", "xy");
    tell("ab", "xz");
    EXPECT_THAT(told, ElementsAre("change 1"));
    EXPECT_EQ(values(), "xz");
}

TEST_F(RowList, theSameRowsTellNothing) {
    tell("ab", "xy");
    tell("ab", "xy");
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(RowList, anotherOrderBeginsAnew) {
    tell("ab", "xy");
    tell("ba", "yx");
    EXPECT_THAT(told, ElementsAre("reset"));
    EXPECT_EQ(values(), "yx");
}

TEST_F(RowList, theSameKeyTwiceIsTwoRows) {
    tell("aa", "xy");
    EXPECT_EQ(values(), "xy");
    tell("a", "x");
    EXPECT_EQ(values(), "x");
}

TEST_F(RowList, neighboursThatComeTogetherAreToldAtOnce) {
    tell("ad", "xy");
    tell("abcdef", "123456");
    EXPECT_THAT(told, ElementsAre("insert 1-2", "insert 4-5", "change 0", "change 3"));
    EXPECT_EQ(values(), "123456");
}

TEST_F(RowList, neighboursThatGoTogetherAreToldAtOnce) {
    tell("abcdef", "123456");
    tell("ad", "14");
    EXPECT_THAT(told, ElementsAre("remove 4-5", "remove 1-2"));
    EXPECT_EQ(values(), "14");
    tell("", "");
    EXPECT_THAT(told, ElementsAre("remove 0-1"));
}
