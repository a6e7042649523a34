// What grows with the length of the footage and what must not. The big brother of these tests is
// benchmarks/long_run.py, with eight hours of footage.

#include "endtoend/InProcess.h"
#include "endtoend/MineTest.h"
#include "fakes/HeldMemory.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace zuvo::endtoend {
namespace {

using standin::Service;
using standin::StandIn;

constexpr double soundMegabyte = 1024.0 * 1024.0;

/// Most memory that a process has had so far, in bytes.
double highWaterBytes(qint64 process) {
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(status, line);) {
        constexpr std::string_view name = "VmHWM:";
        if (line.starts_with(name))
            return std::stod(line.substr(name.size())) * 1024.0; // it stands there in kB
    }
    ADD_FAILURE() << "Process " << process << " tells nothing of its memory";
    return 0.0;
}

class LongRunTest : public MineTest {
protected:
    /// What a run needed.
    struct Needs {
        double highWater = 0.0;             ///< bytes, once the model is asked
        std::vector<std::size_t> openFiles; ///< at each request for a transcription, words apart
    };

    Needs mineChunks(int count) {
        makeFootage(world.media("long.wav"), 300.0 * count);
        Needs needs;
        std::unique_ptr<Running> running;
        const auto connection = QObject::connect(&world.services, &StandIn::requestArrived, [&] {
            if (world.services.requests().back().service == Service::messages)
                needs.highWater = highWaterBytes(running->processId());
            else if (needs.highWater == 0.0)
                needs.openFiles.push_back(tests::openFileCount(std::to_string(running->processId())));
            world.services.forgetRequests();
        });
        running = world.begin({"mine", world.media("long.wav")});
        ending = running->end(std::chrono::seconds(120));
        QObject::disconnect(connection);
        thenItEndsWith(0);
        EXPECT_EQ(needs.openFiles.size(), static_cast<std::size_t>(count));
        return needs;
    }
};

TEST_F(LongRunTest, neitherMemoryNorOpenFilesGrowWithTheNumberOfChunks) {
    // Under the sanitizers, memory that was given back is kept for a while.
    if (qEnvironmentVariableIsSet("ASAN_OPTIONS"))
        world.set("ASAN_OPTIONS", qgetenv("ASAN_OPTIONS").toStdString() + ":quarantine_size_mb=1");
    givenTranscript();
    givenStory();
    const auto few = mineChunks(2);
    const auto many = mineChunks(8);

    // The levels of six chunks more are 3.6 MB of samples, read through a buffer of that size; one chunk kept by
    // mistake would be 9.6 MB.
    constexpr double samples = 6 * 300 * 1000 * 2;
    EXPECT_LT(many.highWater - few.highWater, 2 * samples + 8 * soundMegabyte);
    const auto [fewest, most] = std::minmax_element(many.openFiles.begin(), many.openFiles.end());
    EXPECT_LE(*most - *fewest, 2U) << "a file or connection is kept for each chunk";
}

TEST_F(LongRunTest, minesInOneProcessLeaveMemoryAndOpenFilesWhereTheyWere) {
    const auto file = givenFootage("talk.wav");
    givenTranscript();
    givenStory();
    InProcess inside(world);
    constexpr int warmUpMines = 3;
    constexpr int mines = 13;
    constexpr std::chrono::milliseconds closing{100}; // the last connection does so from the event loop
    std::size_t before = 0;
    std::size_t filesBefore = 0;
    for (int mine = 0; mine < mines; ++mine) {
        if (mine == warmUpMines) {
            tests::runEventLoop(closing);
            before = tests::heldBytes();
            filesBefore = tests::openFileCount();
        }
        std::filesystem::remove_all(world.home() + "/Library");
        inside.mine({file});
        ASSERT_EQ(inside.step(), PipelineStep::complete);
        world.services.forgetRequests();
        inside.processes->calls = {};
    }
    tests::runEventLoop(closing);
    const auto after = tests::heldBytes();
    // The sound of a mine is 384 kB, of which each request sends a copy. The C library's own reserve counts as held,
    // and each request has a thread of Qt's with such a reserve.
    constexpr std::size_t tolerated = 512 * 1024;
    EXPECT_LE(after, before + tolerated) << "by " << after - before << " bytes in " << mines - warmUpMines << " mines";
    EXPECT_EQ(tests::openFileCount(), filesBefore);
}

} // namespace
} // namespace zuvo::endtoend
