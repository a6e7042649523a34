// A program that is used for days: mines that end leave nothing behind.

#include "fakes/HeldMemory.h"
#include "fakes/pipeline/PipelineFixture.h"

#include <filesystem>

using namespace zuvo;
using namespace zuvo::tests;

namespace {

constexpr int warmUpMines = 10;
constexpr int mines = 50;

/// What 40 mines may leave behind, in bytes: less than a log line each.
constexpr std::size_t tolerated = 4096;

class LongUse : public PipelineFixture {
protected:
    enum class Held { onePipeline, onePipelinePerMine };
    enum class Ends { well, withoutTranscript, withoutStory };

    void mineOnce(const std::vector<std::string>& paths, Ends ends) {
        std::filesystem::remove_all(disk.path() + "/home/Library");
        if (ends == Ends::well) {
            givenServicesAnswer();
        } else if (ends == Ends::withoutTranscript) {
            services->then(500, "out of order");
            services->thenFails("Connection closed");
        } else {
            givenTranscription(R"({"start":0,"end":10,"text":"Hello there"})");
            givenTranscription(R"({"start":10,"end":20,"text":"Hello again"})");
            services->then(200, messagesAnswer("I would rather not."));
        }
        pipeline->reset(); // as the pages do before another mine: until then the log is kept
        ended(pipeline->run(paths, {}));
        ASSERT_EQ(pipeline->step(), ends == Ends::well ? PipelineStep::complete : PipelineStep::error);
        ASSERT_EQ(services->plannedCount(), 0U);
        // What the fakes keep for tests that look at it.
        tools->requests = {};
        services->requests = {};
        variablesRead = {};
    }

    void thenMemoryStaysWhereItWas(Held held, Ends ends) {
        const auto paths = givenFootage();
        pipeline = LocalPipeline::create(platform);
        std::size_t before = 0;
        std::size_t filesBefore = 0;
        for (int mine = 0; mine < mines; ++mine) {
            if (mine == warmUpMines) {
                before = heldBytes();
                filesBefore = openFileCount();
            }
            if (held == Held::onePipelinePerMine)
                pipeline = LocalPipeline::create(platform);
            mineOnce(paths, ends);
            if (HasFatalFailure())
                return;
        }
        const auto after = heldBytes();
        RecordProperty("grownBytes", static_cast<int>(after) - static_cast<int>(before));
        EXPECT_LE(after, before + tolerated)
            << "by " << after - before << " bytes in " << mines - warmUpMines << " mines";
        EXPECT_EQ(openFileCount(), filesBefore);
    }
};

TEST_F(LongUse, aLeakOfALogLineAMineWouldBeSeen) {
    std::vector<std::string> kept;
    kept.reserve(mines);
    const auto before = heldBytes();
    for (int mine = warmUpMines; mine < mines; ++mine)
        kept.emplace_back(150, 'x');
    EXPECT_GT(heldBytes(), before + tolerated);
}

TEST_F(LongUse, fiftyMinesOfOnePipelineLeaveTheMemoryWhereItWas) {
    thenMemoryStaysWhereItWas(Held::onePipeline, Ends::well);
}

TEST_F(LongUse, fiftyPipelinesLeaveTheMemoryWhereItWas) {
    thenMemoryStaysWhereItWas(Held::onePipelinePerMine, Ends::well);
}

TEST_F(LongUse, fiftyMinesWithoutATranscriptLeaveTheMemoryWhereItWas) {
    thenMemoryStaysWhereItWas(Held::onePipeline, Ends::withoutTranscript);
}

TEST_F(LongUse, fiftyMinesWithoutAStoryLeaveTheMemoryWhereItWas) {
    thenMemoryStaysWhereItWas(Held::onePipelinePerMine, Ends::withoutStory);
}

} // namespace
