// Streams that end, are full or were never there: what is printed may be lost, what is paid for may not.

#include "endtoend/MineTest.h"

namespace zuvo::endtoend {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class BrokenStreamsTest : public TalkTest {
protected:
    void thenTheMineIsKept() const {
        EXPECT_EQ(jsonOf(world.exports("talk", "project.json")).at("transcript").size(), 3U);
        EXPECT_EQ(jsonOf(world.cache("segments.json")).size(), 1U);
    }
};

TEST_F(BrokenStreamsTest, aReaderWhoLeavesAfterTheFirstLineDoesNotEndTheMine) {
    // The status is what the program ends with, for the shell would give the reader's.
    ending = world.byShell("{ \"$@\"; echo $? >&2; } | /usr/bin/head -n 1", {"mine", file});
    EXPECT_THAT(ending.log(), ElementsAre("$ zuvo mine --files 1 --mode full-mine"));
    EXPECT_THAT(ending.errors, testing::EndsWith("0\n")) << ending.errors;
    thenTheMineIsKept();
}

TEST_F(BrokenStreamsTest, aReaderWhoWasNeverThereDoesNotEndTheMine) {
    ending = world.byShell("{ \"$@\"; echo $? >&2; } | :", {"mine", file});
    EXPECT_THAT(ending.errors, testing::EndsWith("0\n")) << ending.errors;
    thenTheMineIsKept();
}

TEST_F(BrokenStreamsTest, aFullDiskBehindTheOutputDoesNotEndTheMine) {
    ending = world.byShell("exec \"$@\" > /dev/full 2> /dev/full", {"mine", file});
    thenItEndsWith(0);
    thenTheMineIsKept();
}

TEST_F(BrokenStreamsTest, streamsThatAreClosedAtTheStartAreNobodyElsesPlace) {
    // Without them the first things opened would be the lock and the event loop's own, and the log would go there.
    ending = world.byShell("exec \"$@\" <&- >&- 2>&-", {"mine", file});
    thenItEndsWith(0);
    EXPECT_EQ(ending.output + ending.errors, "");
    thenTheMineIsKept();
    for (const auto& [path, bytes] : filesBelow(world.temporary()))
        EXPECT_EQ(bytes, "") << path;
    for (const auto& [path, bytes] : filesBelow(world.home()))
        EXPECT_THAT(bytes, Not(HasSubstr("$ zuvo mine"))) << path;
}

TEST_F(BrokenStreamsTest, aLimitOnFilesIsAFailureInWordsAndNoSignal) {
    // 100 blocks of 512 bytes: less than the extracted audio, more than all that is written before it.
    ending = world.byShell("ulimit -f 100; exec \"$@\"", {"mine", file});
    thenItEndsWith(1);
    thenLogEndsWith({"Extracting audio from files...", "✗ Audio extraction failed"});
    EXPECT_TRUE(world.services.requests().empty());
}

TEST_F(BrokenStreamsTest, aLimitThatLetsNothingBeWrittenIsNoSignalEither) {
    ending = world.byShell("ulimit -f 0; exec \"$@\"", {"mine", file});
    thenItEndsWith(1);
    thenLogEndsWith({"✗ Audio extraction failed"});
    auto files = filesBelow(world.home());
    EXPECT_EQ(files.erase(world.cache("mine.lock")), 1U) << "the lock, which needs no byte in it";
    EXPECT_LE(files.size(), 1U) << "the tool's own empty file at the most";
    EXPECT_TRUE(world.services.requests().empty());
}

} // namespace
} // namespace zuvo::endtoend
