// Every row of the user guide's table of troubles, in a world where just that is wrong: the guide quotes what the
// program writes, line by line, and neither can change without the other.

#include "endtoend/GuideTable.h"
#include "endtoend/MineTest.h"
#include "endtoend/ResolveWorlds.h"
#include "platform/MineLock.h"

#include <QCoreApplication>
#include <algorithm>
#include <cctype>
#include <functional>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace zuvo::endtoend {
namespace {

using standin::Failure;
using standin::Service;

/// What the service says in these tests; the guide writes {the service's words}.
constexpr const char* servicesWords = "not today, says the service";
constexpr const char* timeline = "Interview Day 1";

/// A port of this machine on which nobody answers: taken, but not listened to, as long as the object lives.
class DeafPort {
public:
    DeafPort() : m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        EXPECT_EQ(::bind(m_socket, reinterpret_cast<const sockaddr*>(&address), size), 0);
        EXPECT_EQ(::getsockname(m_socket, reinterpret_cast<sockaddr*>(&address), &size), 0);
        m_address = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port));
    }
    ~DeafPort() { ::close(m_socket); }
    DeafPort(const DeafPort&) = delete;
    DeafPort& operator=(const DeafPort&) = delete;

    [[nodiscard]] const std::string& address() const { return m_address; }

private:
    int m_socket;
    std::string m_address;
};

/// The name of a trouble is the first cell of its row.
class TroubleTest : public MineTest, public testing::WithParamInterface<std::string> {
public:
    /// Puts one thing of the world wrong and runs the program.
    using Story = std::function<void(TroubleTest&)>;

    static std::map<std::string, Story> stories();

    static std::vector<std::string> troubles() {
        std::vector<std::string> names;
        for (const auto& [what, story] : stories())
            names.push_back(what);
        return names;
    }

    /// "the disk is full" is the test theDiskIsFull.
    static std::string testName(const testing::TestParamInfo<std::string>& info) {
        std::string name;
        bool isNewWord = false;
        for (const char c : info.param) {
            if (std::isalpha(static_cast<unsigned char>(c)) != 0)
                name += isNewWord ? static_cast<char>(std::toupper(static_cast<unsigned char>(c))) : c;
            isNewWord = c == ' ';
        }
        return name;
    }

protected:
    std::string file;
    std::map<std::string, std::string> values; ///< of the names in braces
    DeafPort deafPort;

    void SetUp() override {
        world.program = ZUVO_ELSEWHERE_PROGRAM;
        file = givenFootage("talk.wav");
        givenTranscript();
        givenStory();
        values = {{"file", "talk.wav"},
                  {"timeline", timeline},
                  {"home", world.home()},
                  {"temporary folder", world.temporary()},
                  {"the service's words", servicesWords}};
    }

    void run(const std::vector<std::string>& words) { ending = world.zuvo(words); }
    void mineFile() { run({"mine", file}); }

    void givenStatus(Service service, int status) {
        world.services.fail(service, Failure::status(status, servicesWords));
    }

    void givenNoTools() {
        const auto root = world.folder.makeFolder("another-machine");
        world.set("ZUVO_ELSEWHERE_TOOLS", root);
        values["place"] = root + "/usr/bin";
    }

    void givenNoVariable(const char* name) { world.environment.remove(QString::fromLatin1(name)); }

    /// A file that is full from its first byte on, in the place of one of the program's.
    void givenFullDiskAt(const std::string& path) const { ASSERT_EQ(::symlink("/dev/full", path.c_str()), 0); }

    /// The lines of both streams without the time and the white space before them.
    [[nodiscard]] std::vector<std::string> writtenLines() const {
        auto lines = ending.log();
        for (const auto& text : {ending.output, ending.errors}) {
            for (const auto& line : linesOf(text))
                lines.push_back(line);
        }
        for (auto& line : lines)
            line.erase(0, std::min(line.find_first_not_of(' '), line.size()));
        return lines;
    }
};

std::map<std::string, TroubleTest::Story> TroubleTest::stories() {
    return {
        {"ffmpeg is not installed",
         [](TroubleTest& test) {
             test.givenNoTools();
             test.mineFile();
         }},
        {"Python is not installed",
         [](TroubleTest& test) {
             test.givenNoTools();
             test.values["the system's words"] = "execve: No such file or directory";
             test.world.folder.write("home/Library/Caches/ZuvoManager/segments.json", "[]");
             test.run({"build"});
         }},
        {"the key of the transcription service is missing",
         [](TroubleTest& test) {
             test.givenNoVariable("OPENAI_API_KEY");
             test.givenStatus(Service::transcription, 401);
             test.mineFile();
         }},
        {"the key of the messages service is missing",
         [](TroubleTest& test) {
             test.givenNoVariable("ANTHROPIC_API_KEY");
             test.givenStatus(Service::messages, 401);
             test.mineFile();
         }},
        {"the transcription service refuses the key, or has no credit left",
         [](TroubleTest& test) {
             test.givenStatus(Service::transcription, 401);
             test.mineFile();
         }},
        {"the messages service refuses the key, or has too much to do",
         [](TroubleTest& test) {
             test.givenStatus(Service::messages, 529);
             test.mineFile();
         }},
        {"there is no network",
         [](TroubleTest& test) {
             test.world.set("OPENAI_BASE_URL", "https://transcription.invalid/v1");
             test.world.set("RES_OPTIONS", "timeout:1 attempts:1");
             test.values["host"] = "transcription.invalid";
             test.mineFile();
         }},
        {"the transcription service is down",
         [](TroubleTest& test) {
             test.world.set("OPENAI_BASE_URL", test.deafPort.address() + "/v1");
             test.values["address"] = test.deafPort.address();
             test.mineFile();
         }},
        {"the messages service is down",
         [](TroubleTest& test) {
             test.world.set("ANTHROPIC_BASE_URL", test.deafPort.address());
             test.values["address"] = test.deafPort.address();
             test.mineFile();
         }},
        {"a service hangs up",
         [](TroubleTest& test) {
             test.world.services.fail(Service::messages, Failure::drop());
             test.mineFile();
         }},
        {"an address of yours is refused",
         [](TroubleTest& test) {
             test.world.set("OPENAI_BASE_URL", "http://example.com/v1");
             test.values["address"] = "http://example.com/v1";
             test.mineFile();
         }},
        {"the disk is full",
         [](TroubleTest& test) {
             test.world.folder.makeFolder("home/Library/Caches/ZuvoManager");
             test.givenFullDiskAt(test.world.cache("extracted_audio.wav"));
             test.mineFile();
         }},
        {"the results cannot be saved, as on a full disk",
         [](TroubleTest& test) {
             test.world.folder.write("home/Library/Application Support", "in the way");
             test.values["path"] = test.world.exports("talk", "story_brief.md");
             test.values["reason"] = "there is no such file (Not a directory)";
             test.mineFile();
         }},
        {"the name of a mine would lead out of the folder of projects",
         [](TroubleTest& test) {
             test.run({"mine", "...mov"});
         }},
        {"a project names its media by paths that are not absolute",
         [](TroubleTest& test) {
             Json project = {{"timeline", "talk"}, {"createdAt", 1.0}, {"language", "en"}, {"targetMinutes", 5.0}};
             project["mediaPaths"] = Json::array({"footage/talk.wav"});
             project["transcript"] = Json::array();
             test.world.folder.write("home/Library/Application Support/ZuvoManager/exports/talk/project.json",
                                     project.dump());
             test.values["path"] = "footage/talk.wav";
             test.givenStatus(Service::messages, 529);
             test.run({"mine", "--reload", "talk"});
         }},
        {"Resolve has not all of the footage",
         [](TroubleTest& test) {
             test.world.givenResolve(resolveWith("Talk", {clipOf("/other/short.wav", "00:00:30:00")}));
             test.world.folder.write("home/Library/Caches/ZuvoManager/segments.json",
                                     R"([{"index": 0, "startTime": 1.0, "endTime": 3.0, "sourceClip": "talk.wav",
                                          "transcript": "a", "translation": "Words.", "chapter": null}])");
             test.values["n"] = "0";
             test.values["total"] = "1";
             test.run({"build"});
         }},
        {"the file is not there, or no footage",
         [](TroubleTest& test) {
             test.file = test.world.folder.write("media/talk.wav", "not a sound");
             test.mineFile();
         }},
        {"the folder for temporary files is not your own",
         [](TroubleTest& test) {
             test.world.folder.write("temporary/zuvo-" + std::to_string(geteuid()), "in the way");
             test.mineFile();
         }},
        {"another mine is running",
         [](TroubleTest& test) {
             Environment environment;
             environment.home = test.world.home();
             environment.systemTemporaryFolder = test.world.temporary();
             const MineLock other(environment);
             test.values["program"] = QCoreApplication::applicationName().toStdString();
             test.values["process"] = std::to_string(::getpid());
             test.mineFile();
         }},
        {"the lock of the caches cannot be made",
         [](TroubleTest& test) {
             test.world.folder.makeFolder("home/Library/Caches/ZuvoManager/mine.lock");
             test.values["the system's words"] = "Is a directory";
             test.mineFile();
         }},
        {"Resolve is not installed",
         [](TroubleTest& test) {
             test.values["Python's words"] = "import of DaVinciResolveScript halted; None in sys.modules";
             test.run({"timelines"});
         }},
        {"Resolve does not run",
         [](TroubleTest& test) {
             test.world.givenResolve({{"running", false}});
             test.run({"timelines"});
         }},
        {"Resolve has no project open",
         [](TroubleTest& test) {
             test.world.givenResolve({{"project", nullptr}});
             test.run({"timelines"});
         }},
        {"Resolve cannot be asked, or has no such timeline",
         [](TroubleTest& test) {
             test.world.givenResolve({{"running", false}});
             test.run({"mine", "--timeline", timeline});
         }},
        {"Resolve cannot be asked for a build",
         [](TroubleTest& test) {
             test.world.folder.write("home/Library/Caches/ZuvoManager/segments.json", "[]");
             test.run({"build"});
         }},
        {"Resolve makes no new timeline",
         [](TroubleTest& test) {
             auto resolve = resolveWithSample(timeline);
             resolve["failures"] = Json::array({Json{{"method", "CreateEmptyTimeline"}, {"gives", nullptr}}});
             test.world.givenResolve(resolve);
             test.world.folder.write("home/Library/Caches/ZuvoManager/segments.json", "[]");
             test.run({"build"});
         }},
        {"a cut is audited without a transcript",
         [](TroubleTest& test) {
             test.world.givenResolve(resolveWithSample(timeline));
             test.run({"audit", "--timeline", timeline});
         }},
    };
}

TEST(TroubleTableTest, theGuideTellsOfEveryTroubleOnceAndOfNoOther) {
    std::vector<std::string> told;
    for (const auto& trouble : troublesOfTheGuide())
        told.push_back(trouble.what);
    EXPECT_THAT(told, testing::UnorderedElementsAreArray(TroubleTest::troubles()));
}

TEST_P(TroubleTest, theProgramWritesWhatTheGuideQuotes) {
    stories().at(GetParam())(*this);
    EXPECT_EQ(ending.status, 1) << ending.failure;
    bool isInGuide = false;
    for (const auto& trouble : troublesOfTheGuide()) {
        if (trouble.what != GetParam())
            continue;
        isInGuide = true;
        EXPECT_FALSE(trouble.lines.empty());
        for (const auto& line : trouble.lines)
            EXPECT_THAT(writtenLines(), testing::Contains(filledIn(line, values))) << ending.output << ending.errors;
    }
    EXPECT_TRUE(isInGuide);
}

INSTANTIATE_TEST_SUITE_P(TheGuide, TroubleTest, testing::ValuesIn(TroubleTest::troubles()), TroubleTest::testName);

} // namespace
} // namespace zuvo::endtoend
