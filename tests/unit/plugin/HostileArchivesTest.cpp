// Archives that nobody should be offered: each ends as its row says, and a refused one leaves everything as it was.

#include "UpdateFixture.h"

using namespace zuvo;
using namespace zuvo::tests;

namespace fs = std::filesystem;

namespace {

constexpr const char* notWhole = "The update is not a whole zip archive";
constexpr const char* lacksVersion = "The update lacks the file com.tarnwick.zuvo/version.json";
constexpr const char* badVersion = "The update's version.json cannot be read";

struct Row {
    const char* name;
    std::string script;
    std::string refusal; ///< empty if the plugin is installed
};

void PrintTo(const Row& row, std::ostream* stream) {
    *stream << row.name;
}

/// "The update holds a ...: com.tarnwick.zuvo/{name}"
std::string holds(const std::string& what, const std::string& name) {
    return "The update holds " + what + ": com.tarnwick.zuvo/" + name;
}

const std::string leadsOut = "a link that leads out of it";
const std::string special = "a special file";
const std::string setId = "a file with set-id rights";
const std::string unreadable = "an entry that its owner cannot read";
const std::string unusable = "a name that cannot be used";
const std::string twice = "one name twice";
const std::string notUnpackable = "an entry that cannot be unpacked";

/// Python that changes an entry's uncompressed size in both headers; the names are as long as each other.
std::string withSize(const std::string& size) {
    return "def change(d):\n"
           "    for at, field in ((d.find(b'PK\\x03\\x04'), 22), (d.find(b'PK\\x01\\x02'), 24)):\n"
           "        d[at + field:at + field + 4] = (" +
           size + ").to_bytes(4, 'little')\npatch(change)";
}

std::vector<Row> links() {
    return {
        {"anAbsoluteLink", "version(); link(top + 'l', '/etc/passwd')", holds(leadsOut, "l")},
        {"aClimbingLink", "version(); link(top + 'a/l', '../../../secret')", holds(leadsOut, "a/l")},
        {"aLinkToANeighbour", "version(); put('other/f'); link(top + 'l', '../other')", holds(leadsOut, "l")},
        {"aLinkWithAControlCharacter", "version(); link(top + 'l', 'a\\nb')", holds(leadsOut, "l")},
        {"aLinkForThePlugin", "link('com.tarnwick.zuvo', '/etc')", lacksVersion},
        {"aLinkForTheVersionFile", "put(top + 'v.json', '{\"version\":\"0.2\"}'); link(top + 'version.json', 'v.json')",
         lacksVersion},
        {"aFileBehindALink", "version(); link(top + 'out', '/tmp'); put(top + 'out/f')", holds(twice, "out/f")},
        {"aFileBehindALaterLink", "version(); put(top + 'out/f'); link(top + 'out', '/tmp')", holds(twice, "out")},
        {"aLinkWithin", "version(); put(top + 'a/f'); link(top + 'l', 'a/f')", ""},
    };
}

std::vector<Row> kindsAndRights() {
    return {
        {"aCharacterDevice", "version(); put(top + 'null', '', 0o020666)", holds(special, "null")},
        {"aBlockDevice", "version(); put(top + 'disk', '', 0o060666)", holds(special, "disk")},
        {"aPipe", "version(); put(top + 'pipe', '', 0o010644)", holds(special, "pipe")},
        {"aSocket", "version(); put(top + 'socket', '', 0o140755)", holds(special, "socket")},
        {"aFolderThatIsCalledAFile", "version(); put(top + 'd', '', 0o040755)", holds(special, "d")},
        {"aSetUserIdFile", "version(); put(top + 'su', 'x', 0o104755)", holds(setId, "su")},
        {"aSetGroupIdFile", "version(); put(top + 'sg', 'x', 0o102755)", holds(setId, "sg")},
        {"aSetGroupIdFolder", "version(); put(top + 'sg/', '', 0o042755)", holds(setId, "sg/")},
        {"aFileWithoutRights", "version(); put(top + 'f', 'x', 0o100000)", holds(unreadable, "f")},
        {"aFolderWithoutRights", "version(); put(top + 'd/', '', 0o040000)", holds(unreadable, "d/")},
        {"aVersionFileWithoutRights", "put(top + 'version.json', '{\"version\":\"0.2\"}', 0o100000)",
         holds(unreadable, "version.json")},
    };
}

std::vector<Row> names() {
    const std::string out = "The update holds a path that leads out of it: ";
    return {
        {"aClimbingPath", "version(); put('../escaped')", out + "../escaped"},
        {"aPathThatClimbsLater", "version(); put(top + '../../escaped')", out + "com.tarnwick.zuvo/../../escaped"},
        {"aPathThatStaysButClimbs", "version(); put(top + 'a/../b')", out + "com.tarnwick.zuvo/a/../b"},
        {"anAbsolutePath", "version(); put('/zuvo-absolute-escape')", out + "/zuvo-absolute-escape"},
        {"aBackslash", "version(); put(top + 'a\\\\..\\\\b')", holds(unusable, "a\\..\\b")},
        {"aLineEnd", "version(); put(top + 'a\\nb')", holds(unusable, "a\uFFFDb")},
        {"aTerminalSequence", "version(); put(top + '\\x1b[2J')", holds(unusable, "\uFFFD[2J")},
        {"aDelete", "version(); put(top + 'a\\x7f')", holds(unusable, "a\uFFFD")},
        {"anEmptyName", "version(); put('')", "The update holds a name that cannot be used: "},
        {"anEmptyStep", "version(); put(top + 'a//b')", holds(unusable, "a//b")},
        {"aDot", "version(); put(top + './b')", holds(unusable, "./b")},
        {"aNameThatIsNotText", "version(); put(top + 'QQ')\npatch(lambda d: d.replace(b'QQ', b'\\xff\\xfe'))",
         holds(unusable, "\uFFFD\uFFFD")},
        {"aPathTooLong", "version(); put(top + '/'.join(['x' * 100] * 11))", holds(unusable, std::string(62, 'x'))},
        {"aNameLongerThanADiskTakes", "version(); put(top + 'x' * 300)", "The update could not be unpacked whole"},
        {"veryDeepFolders", "version(); put(top + 'd/' * 63 + 'f')",
         "The update's folders are nested too deeply: com.tarnwick.zuvo/" + std::string("d/d/d/d/d/d/d/d/d/d/"
                                                                                        "d/d/d/d/d/d/d/d/d/d/"
                                                                                        "d/d/d/d/d/d/d/d/d/d/d/")},
        {"oneNameTwice", "version(); put(top + 'a', '1'); put(top + 'a', '2')", holds(twice, "a")},
        {"oneNameInTwoCases", "version(); put(top + 'a.js'); put(top + 'A.js')", holds(twice, "A.js")},
        {"oneNameInTwoForms", "version(); put(top + '\\u00e9'); put(top + 'e\\u0301')", holds(twice, "e\u0301")},
        {"aFolderInTwoCases", "version(); put(top + 'lib/a'); put(top + 'Lib/b')", holds(twice, "Lib/b")},
        {"twoPlugins", "version(); put('Com.Tarnwick.Zuvo/version.json', '{\"version\":\"9\"}')",
         "The update holds one name twice: Com.Tarnwick.Zuvo/version.json"},
        {"aFileThatIsAFolderToo", "version(); put(top + 'a'); put(top + 'a/b')", holds(twice, "a/b")},
        {"quotesAndShellWords", "version(); put(top + 'it\\'s \"$(touch x)\" `id` ; & | * ?.js')", ""},
        {"namesInOtherScripts", "version(); put(top + '\\u65e5\\u672c/\\u00fc.js')", ""},
        {"aNameThatLooksLikeAnOption", "version(); put(top + '-rf'); put('-rf/x')", ""},
    };
}

std::vector<Row> versionFiles() {
    return {
        {"noVersionFile", "put(top + 'index.html')", lacksVersion},
        {"aFolderForTheVersionFile", "put(top + 'version.json/', '', 0o040755); put(top + 'version.json/f')",
         lacksVersion},
        {"aVersionFileInAnotherCase", "put(top + 'Version.json', '{\"version\":\"0.2\"}')", lacksVersion},
        {"aVersionFileThatIsNotJson", "put(top + 'version.json', 'version 0.2')", badVersion},
        {"anEmptyVersionFile", "put(top + 'version.json', '')", badVersion},
        {"aVersionFileWithoutAVersion", "put(top + 'version.json', '{}')", badVersion},
        {"aVersionThatIsANumber", "put(top + 'version.json', '{\"version\":2}')", badVersion},
        {"aVersionFileThatIsNotText", "put(top + 'version.json', b'{\"version\":\"\\xff\"}')", badVersion},
        {"aVersionFileNestedTooDeeply", "put(top + 'version.json', '[' * 30000 + ']' * 30000)", badVersion},
        {"aVersionFileTooLarge", "put(top + 'version.json', '{\"version\":\"0.2\"}' + ' ' * 65536)", badVersion},
        {"anotherTopLevelFolder", "put('com.tarnwick.other/version.json', '{\"version\":\"0.2\"}')", lacksVersion},
        {"noTopLevelFolder", "put('version.json', '{\"version\":\"0.2\"}')", lacksVersion},
        {"aPluginWithinAFolder", "put(top + top + 'version.json', '{\"version\":\"0.2\"}')", lacksVersion},
        {"anotherFolderBesideIt", "version(); put('__MACOSX/._x'); put('com.tarnwick.other/version.json', '{}')", ""},
    };
}

std::vector<Row> sizes() {
    const std::string tooLarge = "The update is larger than 256 MB when it is unpacked";
    return {
        {"tooManyEntries", "version()\nfor n in range(10000):\n    put(top + str(n), '')",
         "The update has more than 10,000 entries"},
        {"asManyEntriesAsMayBe", "version()\nfor n in range(9999):\n    put('other/%d' % n, '')", ""},
        {"moreThan64MegabytesPacked", "version(); z.close(); open(sys.argv[1], 'r+b').truncate(64 * 1024 * 1024 + 1)",
         "The update is larger than 64 MB"},
        {"moreThan256MegabytesByItsDirectory", "put(top + 'bomb'); version()\n" + withSize("256 * 1024 * 1024"),
         tooLarge},
        {"manyEntriesThatAreTooMuchTogether",
         "put(top + 'a'); put(top + 'b'); version()\n"
         "def change(d):\n"
         "    for mark, field in ((b'PK\\x03\\x04', 22), (b'PK\\x01\\x02', 24)):\n"
         "        at = d.find(mark)\n"
         "        while at >= 0:\n"
         "            d[at + field:at + field + 4] = (90 * 1024 * 1024).to_bytes(4, 'little')\n"
         "            at = d.find(mark, at + 4)\n"
         "patch(change)",
         tooLarge},
        {"aBombThatClaimsToBeSmall", "put(top + 'bomb', b'\\0' * 50000000); version()\n" + withSize("10"),
         "The update is damaged: com.tarnwick.zuvo/bomb"},
        {"anEntryThatClaimsToBeLarge", "put(top + 'small'); version()\n" + withSize("1000"),
         "The update is damaged: com.tarnwick.zuvo/small"},
    };
}

std::vector<Row> damages() {
    return {
        {"anEmptyFile", "z.close(); open(sys.argv[1], 'wb')", notWhole},
        {"aPageForPeople", "patch(lambda d: bytearray(b'<html>404 Not Found</html>'))", notWhole},
        {"aTarArchive",
         "import tarfile, io\n"
         "b = io.BytesIO(); tarfile.open(fileobj=b, mode='w:gz').close()\n"
         "patch(lambda d: bytearray(b.getvalue()))",
         notWhole},
        {"anArchiveOfNothing", "pass", lacksVersion},
        {"aHalf", "version(); put(top + 'a', 'x' * 999)\npatch(lambda d: d[:len(d) // 2])", notWhole},
        {"theLastByteMissing", "version()\npatch(lambda d: d[:-1])", notWhole},
        {"theFirstByteMissing", "version()\npatch(lambda d: d[1:])", notWhole},
        {"aBrokenDirectory", "version()\npatch(lambda d: d.replace(b'PK\\x01\\x02', b'PK\\x01\\x09'))", notWhole},
        {"aBrokenLocalHeader", "version()\npatch(lambda d: d.replace(b'PK\\x03\\x04', b'PK\\x03\\x09'))",
         "The update could not be unpacked whole"},
        // The checker and unzip both go by the directory.
        {"oneNameInTheDirectoryAndAnotherAtTheFile",
         "version(); put(top + 'good')\npatch(lambda d: d.replace(b'good', b'evil', 1))", ""},
        {"aChangedByte",
         "put(top + 'a', 'unchanged', method=zipfile.ZIP_STORED); version()\n"
         "patch(lambda d: d.replace(b'unchanged', b'unchanted'))",
         "The update is damaged: com.tarnwick.zuvo/a"},
        {"bytesInFront", "version()\npatch(lambda d: b'#!/bin/sh\\n' + d)", notWhole},
        {"bytesBehind", "version()\npatch(lambda d: d + b'more')", notWhole},
        {"twoArchivesInOne", "version()\npatch(lambda d: d + d)", notWhole},
        {"anEndWithinTheComment", "version(); z.comment = b'PK\\x05\\x06' + b'\\0' * 20", notWhole},
        {"aComment", "version(); z.comment = b'0123456789abcdef'", ""},
        // As libarchive writes it: of the three figures the local header states the unpacked size alone, and all of
        // them follow the bytes.
        {"aSizeInOneHeaderAlone",
         "version()\n"
         "def change(d):\n"
         "    d[14:22] = b'\\0' * 8\n"
         "    d[6] |= 8\n"
         "    at = d.find(b'PK\\x01\\x02')\n"
         "    d[at + 8] |= 8\n"
         "    d[-6:-2] = (at + 16).to_bytes(4, 'little')\n"
         "    d[at:at] = b'PK\\x07\\x08' + d[at + 16:at + 28]\n"
         "patch(change)",
         ""},
        {"aSecondDisk", "version()\ndef change(d):\n    d[d.rfind(b'PK\\x05\\x06') + 4] = 1\npatch(change)", notWhole},
        {"fewerEntriesThanThereAre",
         "version(); put(top + 'a')\n"
         "def change(d):\n"
         "    at = d.rfind(b'PK\\x05\\x06')\n"
         "    d[at + 8] = d[at + 10] = 1\n"
         "patch(change)",
         notWhole},
        {"aZip64End",
         "version()\n"
         "def change(d):\n"
         "    at = d.rfind(b'PK\\x05\\x06')\n"
         "    import struct\n"
         "    size, offset = struct.unpack('<II', d[at + 12:at + 20])\n"
         "    end = struct.pack('<4sQHHIIQQQQ', b'PK\\x06\\x06', 44, 45, 45, 0, 0, 1, 1, size, offset)\n"
         "    where = struct.pack('<4sIQI', b'PK\\x06\\x07', 0, at, 1)\n"
         "    d[at + 8:at + 20] = b'\\xff' * 12\n"
         "    return d[:at] + end + where + d[at:]\n"
         "patch(change)",
         notWhole},
        {"aZip64SizeThatIsNotThere", "put(top + 'a'); version()\n" + withSize("0xFFFFFFFF"), notWhole},
        {"overlappingEntries",
         "put(top + 'a', 'x' * 999); put(top + 'b'); version()\n"
         "def change(d):\n"
         "    second = d.find(b'PK\\x01\\x02', d.find(b'PK\\x01\\x02') + 4)\n"
         "    d[second + 42:second + 46] = b'\\0' * 4\n"
         "patch(change)",
         "The update is damaged: com.tarnwick.zuvo/b"},
        {"anEncryptedEntry",
         "put(top + 'a', b'12345678901234567', method=zipfile.ZIP_STORED); version()\n"
         "def change(d):\n"
         "    d[6] |= 1\n"
         "    d[d.find(b'PK\\x01\\x02') + 8] |= 1\n"
         "patch(change)",
         holds("an encrypted entry", "a")},
        {"anotherCompression", "put(top + 'a', 'x' * 99, method=zipfile.ZIP_BZIP2); version()",
         holds(notUnpackable, "a")},
        {"aFolderWithBytes", "version(); put(top + 'd/', 'x', 0o040755, zipfile.ZIP_STORED)",
         holds(notUnpackable, "d/")},
    };
}

std::vector<Row> allRows() {
    std::vector<Row> rows;
    for (const auto& part : {links(), kindsAndRights(), names(), versionFiles(), sizes(), damages()})
        rows.insert(rows.end(), part.begin(), part.end());
    return rows;
}

class Archives : public Update, public testing::WithParamInterface<Row> {};

} // namespace

TEST_P(Archives, endAsTheirRowSays) {
    givenUpdate();
    givenArchive(GetParam().script);
    givenRealCopies();
    downloadAndInstall();
    EXPECT_FALSE(exists("escaped"));
    EXPECT_FALSE(fs::exists("/zuvo-absolute-escape"));
    EXPECT_FALSE(fs::exists("/tmp/f"));
    if (!GetParam().refusal.empty()) {
        thenRefused(GetParam().refusal);
    } else {
        EXPECT_EQ(manager->errorMessage(), std::nullopt);
        EXPECT_EQ(disk.read("plugins/com.tarnwick.zuvo/version.json"), R"({"version":"0.2"})");
        EXPECT_THAT(namesIn("plugins"), testing::ElementsAre("com.tarnwick.zuvo"));
        EXPECT_THAT(namesIn("private"), testing::IsEmpty());
    }
}

INSTANTIATE_TEST_SUITE_P(Hostile, Archives, testing::ValuesIn(allRows()),
                         [](const auto& row) { return std::string(row.param.name); });
