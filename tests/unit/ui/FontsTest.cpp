#include "ui/Fonts.h"

#include <gtest/gtest.h>

using namespace zuvo;

TEST(Fonts, theFirstFamilyThatIsInstalledIsTaken) {
    const QStringList wanted{QStringLiteral("Inter"), QStringLiteral("Noto Sans")};
    EXPECT_EQ(Fonts::firstInstalled(wanted, {QStringLiteral("Noto Sans"), QStringLiteral("Inter")}, {}),
              QStringLiteral("Inter"));
    EXPECT_EQ(Fonts::firstInstalled(wanted, {QStringLiteral("noto sans")}, {}), QStringLiteral("Noto Sans"));
}

TEST(Fonts, theDesktopsOwnStandsInWhereNoneIsInstalled) {
    EXPECT_EQ(Fonts::firstInstalled({QStringLiteral("Inter")}, {QStringLiteral("Cantarell")}, QStringLiteral("Sans")),
              QStringLiteral("Sans"));
}
