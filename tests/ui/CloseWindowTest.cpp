#include "ui/FlowFixture.h"

#include <QGuiApplication>
#include <cerrno>
#include <csignal>
#include <filesystem>

// The window closed in the middle of a mine, at each of its stages: what the program ends with, its tools end with too.

using namespace zuvo;
using namespace zuvo::tests;

namespace {

class CloseWindow : public FlowFixture {
protected:
    /// ffmpeg as it is, but for the call whose words hold this: that one hangs. The id of its process is kept.
    void givenFfmpegHangsAt(const std::string& words) { givenToolHangs(toolPaths().ffmpeg, "ffmpeg", words); }
    void givenFfprobeHangsAt(const std::string& words) { givenToolHangs(toolPaths().ffprobe, "ffprobe", words); }

    void givenToolHangs(std::string& tool, const std::string& name, const std::string& words) {
        const auto path = world.disk().write("tools/" + name, "#!/bin/sh\ncase \"$*\" in *" + words + "*) echo $$ > " +
                                                                  idFile() + "; exec /usr/bin/sleep 1000 ;; esac\n" +
                                                                  "exec " + tool + " \"$@\"\n");
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        tool = path;
    }
    ToolPaths& toolPaths() { return world.platform.environment.tools; }
    [[nodiscard]] std::string idFile() const { return world.disk() / "tool-id"; }

    void startMine() {
        launch();
        DroppedFile file;
        file.url = sample(1);
        file.isProbing = false;
        flow().setDroppedFiles({file});
        flow().styleNext();
    }

    /// The hanging tool's process, once it runs.
    [[nodiscard]] pid_t toolThatHangs() {
        EXPECT_TRUE(waitUntil([this] { return std::filesystem::exists(idFile()) && idIn() > 0; }));
        return idIn();
    }
    [[nodiscard]] pid_t idIn() const {
        const auto text = world.disk().read("tool-id");
        return text.empty() ? 0 : static_cast<pid_t>(std::stol(text));
    }

    /// As `main` does once the last window has closed: window first, then the application.
    void closeWindow() {
        bool wasLast = false;
        const QObject untilClosed;
        QObject::connect(qApp, &QGuiApplication::lastWindowClosed, &untilClosed, [&wasLast] { wasLast = true; });
        driver->window().close();
        EXPECT_TRUE(waitUntil([&wasLast] { return wasLast; }));
        driver.reset();
        world.end();
    }

    static void thenHasEnded(pid_t process) {
        EXPECT_TRUE(waitUntil([process] { return ::kill(process, 0) != 0 && errno == ESRCH; }));
    }

    void thenNothingIsWritten() const {
        EXPECT_FALSE(std::filesystem::exists(world.home() + "/Library/Application Support"));
    }
};

} // namespace

TEST_F(CloseWindow, atEachToolOfAMineTheToolEndsWithTheWindow) {
    struct Stage {
        const char* tool;
        const char* words;
    };
    for (const auto& [tool, words] :
         {Stage{"ffprobe", "show_streams"}, Stage{"ffmpeg", "extracted_audio.wav"}, Stage{"ffprobe", "csv=p=0"},
          Stage{"ffprobe", "stream=channels"}, Stage{"ffmpeg", "s16le -acodec"}, Stage{"ffmpeg", "word_seg_0.wav"}}) {
        SCOPED_TRACE(std::string(tool) + " " + words);
        const auto before = toolPaths();
        std::filesystem::remove(idFile());
        std::string(tool) == "ffmpeg" ? givenFfmpegHangsAt(words) : givenFfprobeHangsAt(words);
        startMine();
        const auto hanging = toolThatHangs();
        ASSERT_GT(hanging, 0);
        closeWindow();
        thenHasEnded(hanging);
        thenNothingIsWritten();
        toolPaths() = before;
    }
}

TEST_F(CloseWindow, whileAServiceIsAskedNothingIsWrittenAfterwards) {
    struct Question {
        standin::Service service;
        standin::Occasion occasion;
    };
    for (const auto& [service, occasion] :
         {Question{standin::Service::transcription, {}}, Question{standin::Service::messages, {}},
          Question{standin::Service::transcription, standin::Occasion::from(2)}}) {
        world.services.failNothing();
        world.services.fail(service, standin::Failure::stall(), occasion);
        const auto awaited = world.services.requests(service).size() + static_cast<std::size_t>(occasion.after) + 1;
        startMine();
        ASSERT_TRUE(waitUntil([&] { return world.services.requests(service).size() >= awaited; }));
        closeWindow();
        thenNothingIsWritten();
    }
}

TEST_F(CloseWindow, afterItTheNextStartMinesToTheEnd) {
    const auto before = toolPaths();
    givenFfmpegHangsAt("word_seg_0.wav");
    startMine();
    const auto hanging = toolThatHangs();
    closeWindow();
    thenHasEnded(hanging);
    toolPaths() = before;
    startMine();
    thenStepIs(MineStep::review);
    EXPECT_EQ(pipeline().step(), PipelineStep::complete);
}
