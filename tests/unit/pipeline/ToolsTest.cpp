#include "fakes/pipeline/PipelineFixture.h"

#include <unistd.h>

using namespace zuvo;
using namespace zuvo::tests;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

namespace {

// The runners with real child processes.
class Tools : public PipelineFixture {
protected:
    Tools() {
        platform.processes = std::make_shared<ChildProcessRunner>();
        platform.environment.tools.python3 = fixedToolPath("python3");
        givenNewLaunch(1);
    }

    static std::vector<std::string> shell(std::string script) { return {"-c", std::move(script)}; }

    static constexpr auto sh = "/bin/sh";
    static constexpr auto missing = "/no/such/tool";
};

} // namespace

TEST_F(Tools, aProcessSucceedsByItsStatusAlone) {
    EXPECT_TRUE(ended(pipeline->runProcess(sh, shell("echo trouble >&2; exit 0"))));
    EXPECT_FALSE(ended(pipeline->runProcess(sh, shell("exit 3"))));
    EXPECT_FALSE(ended(pipeline->runProcess(sh, shell("kill -9 $$"))));
    EXPECT_FALSE(ended(pipeline->runProcess(missing, {})));
}

TEST_F(Tools, outputIsGivenWhateverTheStatusAndNotTrimmed) {
    EXPECT_EQ(ended(pipeline->runProcessOutput(sh, shell("echo ' out '; echo err >&2; exit 3"))), " out \n");
}

TEST_F(Tools, outputThatIsNoTextOrComesFromNoToolIsEmpty) {
    EXPECT_EQ(ended(pipeline->runProcessOutput(sh, shell("printf 'a\\377'"))), "");
    EXPECT_EQ(ended(pipeline->runProcessOutput(missing, {})), "");
}

TEST_F(Tools, argumentsArriveAsTheyAre) {
    EXPECT_EQ(ended(pipeline->runProcessOutput("/usr/bin/printf", {"%s|%s|%s", "it's", "$HOME \"x\"", "é"})),
              "it's|$HOME \"x\"|é");
}

TEST_F(Tools, standardErrorIsGivenWhateverTheStatusAndLeavesNoFile) {
    EXPECT_EQ(ended(pipeline->runProcessStderr(sh, shell("echo out; echo ' err ' >&2; exit 3"))), " err \n");
    EXPECT_EQ(ended(pipeline->runProcessStderr(sh, shell("printf 'a\\377' >&2"))), "");
    EXPECT_THAT(temporaryFiles(), IsEmpty());
}

TEST_F(Tools, aToolThatCannotBeLaunchedGivesNoStandardErrorAndLeavesNoFile) {
    EXPECT_EQ(ended(pipeline->runProcessStderr(missing, {})), "");
    EXPECT_THAT(temporaryFiles(), IsEmpty());
}

TEST_F(Tools, aPythonProgramThatFailsStillGivesWhatItPrintedBefore) {
    EXPECT_EQ(ended(pipeline->runPython("import sys\nprint('before', flush=True)\nsys.exit(3)")), "before\n");
    EXPECT_EQ(ended(pipeline->runPython("print('before', flush=True)\nraise ValueError('x')")), "before\n");
}

TEST_F(Tools, aPythonProgramFindsTheScriptingModulesInPlaceOfWhatWasSet) {
    qputenv("PYTHONPATH", "/set/before");
    EXPECT_EQ(ended(pipeline->runPython("import os\nprint(os.environ['PYTHONPATH'])")), "/resolve/Modules\n");
    qunsetenv("PYTHONPATH");
}

TEST_F(Tools, aPythonThatCannotBeLaunchedIsAFailureAndAnEmptyOutputIsNot) {
    EXPECT_EQ(ended(pipeline->runPython("pass")), "");
    EXPECT_EQ(ended(pipeline->runPython("import sys\nsys.stdout.buffer.write(b'\\xff')")), "");
    platform.environment.tools.python3 = missing;
    givenNewLaunch(1);
    EXPECT_EQ(ended(pipeline->runPython("pass")), std::nullopt);
}

TEST_F(Tools, whatIsAskedOfTheRunnerIsTheToolAndNothingElse) {
    platform.processes = tools;
    platform.environment.tools.python3 = "/tools/python3";
    givenNewLaunch(1);
    tools->when(call("python3", {}), printed("out"));
    (void)ended(pipeline->runPython("print('x')"));
    ASSERT_THAT(tools->requests, SizeIs(1));
    EXPECT_EQ(tools->requests[0].program, "/tools/python3");
    EXPECT_THAT(tools->requests[0].arguments, ElementsAre("-c", "print('x')"));
    EXPECT_THAT(tools->requests[0].variables,
                ElementsAre(std::pair<std::string, std::string>("PYTHONPATH", "/resolve/Modules")));
    // A module of the same name as one of Python's own in the user's folder would be run.
    EXPECT_EQ(tools->requests[0].workingFolder, "/");
}

TEST_F(Tools, theFileForStandardErrorLiesInThePrivateFolderUnderAUuid) {
    platform.processes = tools;
    givenNewLaunch(1);
    (void)ended(pipeline->runProcessStderr("/tools/ffmpeg", {"-i", "/a.wav", "-af", "volumedetect", "-"}));
    EXPECT_EQ(tools->requests.at(0).errorFile,
              temporary + "/zuvo-" + std::to_string(geteuid()) + "/zuvo_stderr_UUID-1.txt");
}
