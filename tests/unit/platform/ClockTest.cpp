#include "platform/Clock.h"

#include <QLocale>
#include <QTimeZone>
#include <ctime>
#include <gtest/gtest.h>

using namespace zuvo;

namespace {

/// A German desktop on the Chatham Islands, 12:45 ahead of UTC in winter, 13:45 in summer.
class ClockTexts : public testing::Test {
protected:
    ClockTexts() {
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        setZone("Pacific/Chatham");
    }
    ~ClockTexts() override {
        QLocale::setDefault(m_locale);
        m_zone.isNull() ? qunsetenv("TZ") : qputenv("TZ", m_zone);
        tzset();
    }

    static void setZone(const char* name) {
        qputenv("TZ", name);
        tzset();
    }

    static QDateTime utc(int year, int month, int day, int hour, int minute, int second, int millisecond = 0) {
        return {QDate(year, month, day), QTime(hour, minute, second, millisecond), Qt::UTC};
    }

private:
    QLocale m_locale;
    QByteArray m_zone = qgetenv("TZ");
};

} // namespace

TEST_F(ClockTexts, aDateIsWrittenInUtcWhateverTheDesktop) {
    EXPECT_EQ(defaultDateText(utc(2024, 3, 9, 7, 5, 2)), "2024-03-09 07:05:02 +0000");
    EXPECT_EQ(defaultDateText(utc(1999, 12, 31, 23, 59, 59, 999)), "1999-12-31 23:59:59 +0000");
}

TEST_F(ClockTexts, aLocalDateIsTurnedIntoUtc) {
    const QDateTime local(QDate(2024, 1, 15), QTime(0, 30, 0), Qt::LocalTime);
    EXPECT_EQ(defaultDateText(local), "2024-01-14 10:45:00 +0000");
}

TEST_F(ClockTexts, aDateOfAnotherOffsetIsTurnedIntoUtc) {
    const QDateTime west(QDate(2024, 6, 30), QTime(22, 0, 0), Qt::OffsetFromUTC, -5 * 3600);
    EXPECT_EQ(defaultDateText(west), "2024-07-01 03:00:00 +0000");
}

TEST_F(ClockTexts, aShortTimeIsTheLocalOneInTwelveHours) {
    EXPECT_EQ(shortTimeText(utc(2024, 1, 14, 10, 45, 0)), "12:30 AM");
    EXPECT_EQ(shortTimeText(utc(2024, 1, 14, 22, 15, 59)), "12:00 PM");
    EXPECT_EQ(shortTimeText(utc(2024, 1, 14, 19, 20, 0)), "9:05 AM");
    EXPECT_EQ(shortTimeText(utc(2024, 1, 14, 9, 14, 0)), "10:59 PM");
    EXPECT_EQ(shortTimeText(utc(2024, 7, 14, 0, 20, 0)), "1:05 PM");
}

TEST_F(ClockTexts, secondsSince1970HaveMilliseconds) {
    EXPECT_EQ(secondsSince1970(utc(1970, 1, 1, 0, 0, 0)), 0.0);
    EXPECT_EQ(secondsSince1970(utc(2001, 9, 9, 1, 46, 40, 250)), 1'000'000'000.25);
    EXPECT_EQ(secondsSince1970(utc(1969, 12, 31, 23, 59, 59, 500)), -0.5);
    EXPECT_EQ(secondsSince1970(QDateTime(QDate(1970, 1, 1), QTime(12, 45), Qt::LocalTime)), 0.0);
}
