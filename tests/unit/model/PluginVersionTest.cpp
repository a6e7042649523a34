#include "model/PluginVersion.h"

#include <gmock/gmock.h>

using namespace zuvo;

namespace {

/// Neither is newer than the other.
void expectEqual(const char* a, const char* b) {
    EXPECT_FALSE(isNewerVersion(a, b)) << a << " over " << b;
    EXPECT_FALSE(isNewerVersion(b, a)) << b << " over " << a;
}

void expectNewer(const char* newer, const char* older) {
    EXPECT_TRUE(isNewerVersion(newer, older)) << newer << " over " << older;
    EXPECT_FALSE(isNewerVersion(older, newer)) << older << " over " << newer;
}

} // namespace

TEST(PluginVersion, aMissingNumberCountsAsZero) {
    expectEqual("0.1.0", "0.1.0-beta"); // 0 1 0 against 0 1
    expectEqual("0.1.0-beta", "0.1.0-beta");
    expectEqual("1", "1.0.0.0");
    expectNewer("1.0.0.1", "1");
}

TEST(PluginVersion, aHigherNumberOnTheLeftDecides) {
    expectNewer("0.2", "0.1.0-beta");
    expectNewer("0.1.1", "0.1.0-beta");
    expectNewer("2.0.0", "1.9.9");
    expectNewer("0.10", "0.9");
    expectNewer("1.0", "0.99.99");
}

TEST(PluginVersion, aSuffixTakesItsNumberAlong) {
    expectEqual("0.1.1-beta", "0.1.0");
    expectEqual("0.1.1-beta", "0.1.0-beta");
    expectNewer("1.0.0-rc1", "0.1.0-beta"); // 1 0 against 0 1
    expectEqual("v1.2", "2");               // 2 alone is left of it
}

TEST(PluginVersion, aDroppedPieceInTheMiddleMovesTheLaterOnesForward) {
    expectEqual("1.x.3", "1.3");
    expectNewer("1.x.3", "1.2");
}

TEST(PluginVersion, emptyPiecesAreOmitted) {
    expectEqual("1..2", "1.2");
    expectEqual(".1.2.", "1.2");
    expectEqual("...", "0");
}

TEST(PluginVersion, aTextWithoutANumberIsZero) {
    expectEqual("", "0.0");
    expectEqual("beta", "");
    expectNewer("0.0.1", "newest");
}

TEST(PluginVersion, aSignBelongsToItsInteger) {
    expectEqual("+1.2", "1.2");
    expectNewer("0", "-1");
    expectNewer("-1", "-2");
    expectNewer("1.0", "1.-1");
    expectEqual("+-1.2", "2"); // two signs are no integer
    expectEqual("-.+", "");
}

TEST(PluginVersion, whiteSpaceAndOtherFormsAreNoIntegers) {
    expectEqual("1. 2", "1");
    expectEqual("1.2\n", "1");
    expectEqual("0x10", "");
    expectEqual("1.1e3", "1");
    expectEqual("1.\xD9\xA2", "1"); // an Arabic two
    expectEqual("007.1", "7.1");
}

TEST(PluginVersion, anIntegerBeyond64BitsIsNone) {
    expectEqual("9223372036854775808.1", "1"); // one more than fits
    expectNewer("9223372036854775807", "9223372036854775806");
    expectNewer("0", "-9223372036854775808");
    expectEqual("99999999999999999999999999999999999999.5", "5");
}
